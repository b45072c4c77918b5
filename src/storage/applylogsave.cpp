#include "storage/applylogsave.h"

#include "core/commands/command.h"
#include "core/commands/undohistory.h"
#include "storage/mcpchangelog.h"
#include "storage/workspace.h"

namespace fb::app {

McpToolResult applyLogSave(Workspace &workspace, McpChangeLog &log, const QString &label,
                           const std::function<McpToolResult()> &body)
{
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
            QStringLiteral("%1 The change is applied in the open project and can be undone, but "
                           "saving failed: %2")
                .arg(outcome.text, saved.message));
    }
    log.append(outcome.text);
    return outcome;
}

McpToolResult applyChange(Workspace &workspace, McpChangeLog &log,
                          std::unique_ptr<core::CompositeCommand> change, const QString &successText)
{
    const QString label = change->label();
    return applyLogSave(workspace, log, label, [&] {
        workspace.undoHistory().push(std::move(change));
        return McpToolResult::success(successText);
    });
}

} // namespace fb::app
