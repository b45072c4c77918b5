#include "storage/backup.h"

#include "storage/folderarchive.h"
#include "storage/zip/zipwriter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

const QString kBackupSuffix = u".fbbackup"_s;

// Backups of one project live beside backups of others, so the name is part of the filter:
// pruning one project's backups never touches another's.
QStringList backupsNamed(const QDir &folder, const QString &backupName)
{
    const QString prefix = backupName + u'-';
    QStringList names;
    const QFileInfoList files = folder.entryInfoList(QDir::Files | QDir::Hidden | QDir::NoSymLinks);
    for (const QFileInfo &file : files) {
        const QString name = file.fileName();
        if (name.startsWith(prefix) && name.endsWith(kBackupSuffix)
            && name.size() >= prefix.size() + kBackupSuffix.size()) {
            names.append(name);
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

bool isHidden(const QString &relativePath)
{
    const QStringList parts = relativePath.split(u'/', Qt::SkipEmptyParts);
    return std::any_of(parts.cbegin(), parts.cend(),
                       [](const QString &part) { return part.startsWith(u'.'); });
}

QString absoluteOf(const QString &path)
{
    const QFileInfo info(path);
    const QString canonical = info.canonicalFilePath();
    return canonical.isEmpty() ? QDir::cleanPath(info.absoluteFilePath()) : canonical;
}

int pruneBackups(const QDir &folder, const QString &backupName, const QString &keep, int retention)
{
    if (retention < 1)
        return 0;
    const QStringList names = backupsNamed(folder, backupName);
    qsizetype excess = names.size() - retention;
    int pruned = 0;
    for (const QString &name : names) {
        if (excess <= 0)
            break;
        // The archive just written stays even if a clock set back makes it sort first.
        if (name == keep)
            continue;
        --excess;
        if (QFile::remove(folder.filePath(name)))
            ++pruned;
    }
    return pruned;
}

} // namespace

Result<BackupOutcome> writeBackup(const QString &projectFolder, const QString &backupFolder,
                                  const QString &backupName, const QString &timeStamp,
                                  int retention)
{
    if (!QFileInfo(projectFolder).isDir()) {
        return makeError(u"The project folder does not exist: %1"_s.arg(
            QDir::toNativeSeparators(projectFolder)));
    }

    const QString backupRoot = absoluteOf(backupFolder) + u'/';
    QList<ZipEntry> entries;
    for (const FolderFile &file : listFolderFiles(projectFolder)) {
        if (isHidden(file.relativePath) || file.absolutePath.startsWith(backupRoot))
            continue;
        QFile in(file.absolutePath);
        if (!in.open(QIODevice::ReadOnly))
            continue;
        QByteArray data = in.readAll();
        if (in.error() != QFileDevice::NoError)
            continue;
        entries.append(ZipEntry{file.relativePath, std::move(data)});
    }
    if (entries.isEmpty()) {
        return makeError(u"The project folder holds no file to back up: %1"_s.arg(
            QDir::toNativeSeparators(projectFolder)));
    }

    const QDir folder(backupFolder);
    if (!QDir().mkpath(backupFolder)) {
        return makeError(u"Could not create the backup folder: %1"_s.arg(
            QDir::toNativeSeparators(backupFolder)));
    }
    const QString fileName = backupName + u'-' + timeStamp + kBackupSuffix;
    const QString archivePath = folder.absoluteFilePath(fileName);
    const QByteArray archive = writeZip(entries);
    QSaveFile out(archivePath);
    if (!out.open(QIODevice::WriteOnly) || out.write(archive) != archive.size() || !out.commit()) {
        return makeError(
            u"Could not write the backup: %1"_s.arg(QDir::toNativeSeparators(archivePath)));
    }

    return BackupOutcome{archivePath, pruneBackups(folder, backupName, fileName, retention)};
}

} // namespace fb::app
