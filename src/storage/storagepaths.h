#pragma once

#include <QString>

namespace fb::app {

// The per-user application data folder that holds working copies and backups. It follows from
// the organization and application names the server sets at start-up.
QString appDataFolder();

// "backups/<name>" inside the data folder.
QString backupFolderFor(const QString &backupName);

// The current local time as "yyyyMMdd-HHmmsszzz", which sorts backups oldest first by name.
QString currentTimeStamp();

// Where a bundle's working copy and the backups live, computed before the bundle is opened.
struct StoragePaths
{
    QString workingCopiesFolder;
    QString backupFolder;
    QString timeStamp;

    static StoragePaths forBundle(const QString &bundlePath, const QString &workingCopiesName);
};

// The working copy of a bundle: its lower-cased base name made safe, "-", and the first 12
// hexadecimal digits of the SHA-256 of its cleaned absolute path in lower case, so each bundle
// path has its own stable working copy.
QString workingCopyName(const QString &bundlePath);

} // namespace fb::app
