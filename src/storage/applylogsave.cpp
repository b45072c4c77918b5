#include "storage/applylogsave.h"

#include "core/commands/command.h"
#include "core/commands/undohistory.h"
#include "storage/mcpchangelog.h"
#include "storage/workspace.h"

namespace fb::app {

McpToolResult applyLogSave(Workspace &workspace, McpChangeLog &log, const QString &label,
                           const std::function<McpToolResult()> &body)
{
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

    const Result<void> saved = workspace.save();
    if (!saved) {
        return McpToolResult::failure(
            QStringLiteral("%1 The change is applied in the open project and can be undone, but "
                           "saving failed: %2")
                .arg(outcome.text, saved.error()));
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
