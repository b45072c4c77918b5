#include "storage/storagepaths.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace fb::app {

QString appDataFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
}

QString backupFolderFor(const QString &backupName)
{
    return QDir(appDataFolder()).filePath(u"backups/"_s + backupName);
}

QString currentTimeStamp()
{
    return QDateTime::currentDateTime().toString(u"yyyyMMdd-HHmmsszzz"_s);
}

StoragePaths StoragePaths::forBundle(const QString &bundlePath, const QString &workingCopiesName)
{
    return {QDir(appDataFolder()).filePath(workingCopiesName),
            backupFolderFor(QFileInfo(bundlePath).completeBaseName()), currentTimeStamp()};
}

QString workingCopyName(const QString &bundlePath)
{
    QString safe = QFileInfo(bundlePath).completeBaseName().toLower();
    for (QChar &c : safe) {
        if (!c.isLetterOrNumber() && c != u' ' && c != u'-' && c != u'_')
            c = u'_';
    }
    safe = safe.trimmed();
    if (safe.isEmpty())
        safe = u"project"_s;
    const QString cleaned = QDir::cleanPath(QFileInfo(bundlePath).absoluteFilePath()).toLower();
    const QByteArray hash = QCryptographicHash::hash(cleaned.toUtf8(), QCryptographicHash::Sha256)
                                .toHex();
    return safe + u'-' + QString::fromLatin1(hash.left(12));
}

} // namespace fb::app
