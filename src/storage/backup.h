#pragma once

#include "core/result.h"

#include <QString>

namespace fb::app {

// Where a backup went and how many older backups it pushed out.
struct BackupOutcome
{
    QString archivePath;
    int prunedCount = 0;
};

// Writes "<backupName>-<timeStamp>.fbbackup" into `backupFolder`: a ZIP archive of every
// regular file under `projectFolder`, except hidden files, files in hidden folders and files
// inside the backup folder itself. Unreadable files are left out. Then removes the oldest
// backups of the same name (by file name, which sorts by time stamp) until at most
// `retention` remain; a retention below 1 removes nothing, and the archive just written is
// never removed. Fails when the folder holds no file to back up or the archive cannot be
// written; the error is a sentence for logs, callers word their own.
Result<BackupOutcome> writeBackup(const QString &projectFolder, const QString &backupFolder,
                                  const QString &backupName, const QString &timeStamp,
                                  int retention);

} // namespace fb::app
