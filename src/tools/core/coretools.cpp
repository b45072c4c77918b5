#include "storage/backup.h"
#include "storage/storagepaths.h"
#include "storage/workspace.h"
#include "tools/common/change.h"
#include "tools/common/mcpchangelog.h"
#include "tools/common/toolcontext.h"
#include "tools/registration.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

constexpr int backupRetention = 15;

McpToolResult saveProject(ToolContext &context, const ToolArguments &)
{
    const SaveOutcome saved = context.workspace().save();
    if (!saved.isSaved())
        return McpToolResult::failure(saved.message);
    return McpToolResult::success(u"Project saved."_s);
}

McpToolResult undoLast(ToolContext &context, const ToolArguments &)
{
    return undoAndSave(context);
}

McpToolResult recentChanges(ToolContext &context, const ToolArguments &)
{
    const McpChangeLog &log = context.log();
    if (log.isEmpty())
        return McpToolResult::success(u"No changes this session."_s);
    return McpToolResult::success(log.entries().join(u'\n'));
}

McpToolResult backupProject(ToolContext &context, const ToolArguments &)
{
    const Workspace &workspace = context.workspace();
    if (workspace.folder().isEmpty())
        return McpToolResult::failure(
            u"The project has no folder yet, so it cannot be backed up."_s);
    const QString name = workspace.bundlePath().isEmpty()
                             ? QFileInfo(workspace.folder()).fileName()
                             : QFileInfo(workspace.bundlePath()).completeBaseName();
    // Backups are named by the writer's local time, so they sort in the order they were made.
    const QString stamp = context.now().toLocalTime().toString(u"yyyyMMdd-HHmmsszzz"_s);
    const Result<BackupOutcome> backup = writeBackup(workspace.folder(), backupFolderFor(name),
                                                     name, stamp, backupRetention);
    if (!backup)
        return McpToolResult::failure(u"Could not create a backup of the project."_s);

    QString text = u"Backed up the project to %1."_s.arg(backup->archivePath);
    if (backup->prunedCount > 0)
        text += u" Pruned %1 older backup(s)."_s.arg(backup->prunedCount);
    return McpToolResult::success(text);
}

} // namespace

std::vector<ToolDefinition> coreTools()
{
    return {
        {u"save_project"_s,
         u"Saves the project to disk immediately. Every mutating tool already saves after its "
         u"change; use this after undo_last or to be certain before handing back to the user."_s,
         {},
         saveProject},
        {u"undo_last"_s,
         u"Undoes the most recent change made in this session (each mutating tool call is one "
         u"undo step) and saves the project. Fails honestly when there is nothing to undo."_s,
         {},
         undoLast},
        {u"get_recent_changes"_s,
         u"Lists what this session has changed so far, oldest first -- the honest transcript of "
         u"the server's own edits."_s,
         {},
         recentChanges},
        {u"backup_project"_s,
         u"Writes a timestamped .fbbackup ZIP of the whole project into the user's backups folder "
         u"(the same place the desktop app backs up to), keeping the 15 most recent. A safety "
         u"snapshot to take before a risky batch of edits."_s,
         {},
         backupProject},
    };
}

} // namespace fb::app
