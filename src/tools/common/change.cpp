#include "tools/common/change.h"

#include "core/commands/command.h"
#include "core/commands/undohistory.h"
#include "storage/workspace.h"
#include "tools/common/mcpchangelog.h"
#include "tools/common/toolcontext.h"

using namespace Qt::StringLiterals;

namespace fb::app {

McpToolResult applyLogSave(ToolContext &context, const QString &label,
                           const std::function<McpToolResult()> &body)
{
    Workspace &workspace = context.workspace();
    // A change that could not be saved is not even tried: the project on disk cannot be read
    // right now, or cannot be written.
    if (const Result<void> writable = workspace.checkWritable(); !writable)
        return McpToolResult::failure(writable.error());

    core::UndoHistory &history = workspace.undoHistory();
    const std::size_t stepsBefore = history.count();

    history.beginGroup(label);
    const McpToolResult outcome = body();
    history.endGroup();

    if (!outcome.ok) {
        if (history.count() > stepsBefore)
            history.undo();
        return outcome;
    }

    const SaveOutcome saved = workspace.save();
    if (saved.isRefused()) {
        // Nothing reached the disk, and the model goes back to what the disk holds.
        if (history.count() > stepsBefore)
            history.undo();
        return McpToolResult::failure(saved.message);
    }
    if (!saved.isSaved()) {
        return McpToolResult::failure(
            u"%1 The change is applied in the open project and can be undone, but saving failed: %2"_s
                .arg(outcome.text, saved.message));
    }
    context.log().append(outcome.text);
    return outcome;
}

McpToolResult applyChange(ToolContext &context, std::unique_ptr<core::CompositeCommand> change,
                          const QString &successText)
{
    const QString label = change->label();
    return applyLogSave(context, label, [&] {
        context.workspace().undoHistory().push(std::move(change));
        return McpToolResult::success(successText);
    });
}

McpToolResult undoAndSave(ToolContext &context)
{
    Workspace &workspace = context.workspace();
    core::UndoHistory &history = workspace.undoHistory();
    if (!history.canUndo())
        return McpToolResult::failure(u"Nothing to undo."_s);
    if (const Result<void> writable = workspace.checkWritable(); !writable)
        return McpToolResult::failure(writable.error());
    history.undo();
    const SaveOutcome saved = workspace.save();
    // A refused save wrote nothing, and the next call reads the project afresh from disk.
    if (saved.isRefused())
        return McpToolResult::failure(saved.message);
    if (!saved.isSaved()) {
        return McpToolResult::failure(
            u"The change was undone in the open project, but saving failed: %1"_s.arg(
                saved.message));
    }
    const QString text = u"Undid the last change."_s;
    context.log().append(text);
    return McpToolResult::success(text);
}

} // namespace fb::app
