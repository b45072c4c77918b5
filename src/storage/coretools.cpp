#include "tools/registration.h"

#include "core/commands/undohistory.h"
#include "server/mcpserver.h"
#include "storage/backup.h"
#include "storage/mcpchangelog.h"
#include "storage/storagepaths.h"
#include "storage/workspace.h"

#include <QFileInfo>

namespace fb::app {

namespace {

constexpr int backupRetention = 15;

McpToolResult saveProject(Workspace &workspace)
{
    const SaveOutcome saved = workspace.save();
    if (!saved.isSaved())
        return McpToolResult::failure(saved.message);
    return McpToolResult::success(QStringLiteral("Project saved."));
}

McpToolResult undoLast(Workspace &workspace, McpChangeLog &log)
{
    core::UndoHistory &history = workspace.undoHistory();
    if (!history.canUndo())
        return McpToolResult::failure(QStringLiteral("Nothing to undo."));
    if (const Result<void> writable = workspace.checkWritable(); !writable)
        return McpToolResult::failure(writable.error());
    history.undo();
    const SaveOutcome saved = workspace.save();
    // A refused save wrote nothing, and the next call reads the project afresh from disk.
    if (saved.isRefused())
        return McpToolResult::failure(saved.message);
    if (!saved.isSaved()) {
        return McpToolResult::failure(
            QStringLiteral("The change was undone in the open project, but saving failed: %1")
                .arg(saved.message));
    }
    const QString text = QStringLiteral("Undid the last change.");
    log.append(text);
    return McpToolResult::success(text);
}

McpToolResult recentChanges(const McpChangeLog &log)
{
    if (log.isEmpty())
        return McpToolResult::success(QStringLiteral("No changes this session."));
    return McpToolResult::success(log.entries().join(u'\n'));
}

McpToolResult backupProject(Workspace &workspace)
{
    if (workspace.folder().isEmpty()) {
        return McpToolResult::failure(
            QStringLiteral("The project has no folder yet, so it cannot be backed up."));
    }
    const QString name = workspace.bundlePath().isEmpty()
                             ? QFileInfo(workspace.folder()).fileName()
                             : QFileInfo(workspace.bundlePath()).completeBaseName();
    const Result<BackupOutcome> backup = writeBackup(workspace.folder(), backupFolderFor(name), name,
                                                     currentTimeStamp(), backupRetention);
    if (!backup)
        return McpToolResult::failure(QStringLiteral("Could not create a backup of the project."));

    QString text = QStringLiteral("Backed up the project to %1.").arg(backup->archivePath);
    if (backup->prunedCount > 0)
        text += QStringLiteral(" Pruned %1 older backup(s).").arg(backup->prunedCount);
    return McpToolResult::success(text);
}

} // namespace

void registerMcpCoreTools(McpServer &server, Workspace &workspace, McpChangeLog &log)
{
    server.addTool(
        toolDescriptor(QStringLiteral("save_project"),
                       QStringLiteral("Saves the project to disk immediately. Every mutating tool "
                                      "already saves after its change; use this after undo_last "
                                      "or to be certain before handing back to the user.")),
        [&](const QJsonObject &) { return saveProject(workspace); });
    server.addTool(
        toolDescriptor(QStringLiteral("undo_last"),
                       QStringLiteral("Undoes the most recent change made in this session (each "
                                      "mutating tool call is one undo step) and saves the project. "
                                      "Fails honestly when there is nothing to undo.")),
        [&](const QJsonObject &) { return undoLast(workspace, log); });
    server.addTool(
        toolDescriptor(QStringLiteral("get_recent_changes"),
                       QStringLiteral("Lists what this session has changed so far, oldest first "
                                      "-- the honest transcript of the server's own edits.")),
        [&](const QJsonObject &) { return recentChanges(log); });
    server.addTool(
        toolDescriptor(QStringLiteral("backup_project"),
                       QStringLiteral("Writes a timestamped .fbbackup ZIP of the whole project "
                                      "into the user's backups folder (the same place the desktop "
                                      "app backs up to), keeping the 15 most recent. A safety "
                                      "snapshot to take before a risky batch of edits.")),
        [&](const QJsonObject &) { return backupProject(workspace); });
}

} // namespace fb::app
