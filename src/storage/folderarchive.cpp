#include "storage/folderarchive.h"

#include "storage/folderimage.h"

#include "storage/zip/zipreader.h"
#include "storage/zip/zipwriter.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

QString archiveUnreadable()
{
    return u"The archive's directory could not be read."_s;
}

QString unsafeEntryName(const QString &name)
{
    return u"The archive holds an entry whose name leads outside its folder: %1"_s.arg(name);
}

QString folderNotEmpty(const QString &path)
{
    return u"The extraction folder is not empty: %1"_s.arg(QDir::toNativeSeparators(path));
}

QString folderNotCreated(const QString &path)
{
    return u"Could not create the folder: %1"_s.arg(QDir::toNativeSeparators(path));
}

QString parentNotCreated(const QString &path)
{
    return u"Could not create the folder for: %1"_s.arg(QDir::toNativeSeparators(path));
}

QString entryNotUnpacked(const QString &path)
{
    return u"Could not unpack a project file: %1"_s.arg(QDir::toNativeSeparators(path));
}

QString fileNotWritten(const QString &path)
{
    return u"Could not write a project file: %1"_s.arg(QDir::toNativeSeparators(path));
}

bool isFolderEntry(const QString &name)
{
    return name.endsWith(u'/');
}

// Where an entry lands under `root`, or an empty string when its name must not be written:
// names are paths relative to the archive's root and never climb out of it.
QString entryTarget(const QString &root, const QString &name)
{
    if (name.isEmpty() || name.contains(u'\\') || name.contains(QChar(0)) || name.startsWith(u'/')
        || QDir::isAbsolutePath(name)) {
        return {};
    }
    const QStringList parts = name.split(u'/');
    if (parts.contains(u".."_s))
        return {};
    const QString target = QDir::cleanPath(root + u'/' + name);
    const QString prefix = root.endsWith(u'/') ? root : root + u'/';
    if (target.startsWith(prefix) || (target == root && isFolderEntry(name)))
        return target;
    return {};
}

} // namespace

QList<FolderFile> listFolderFiles(const QString &folder)
{
    const QFileInfo info(folder);
    QList<FolderFile> files;
    if (!info.isDir())
        return files;
    const QString rootPath = info.canonicalFilePath();
    const QDir root(rootPath);
    // Without QDir::System, sockets, pipes and devices are left out: reading a pipe would block.
    QDirIterator it(rootPath, QDir::Files | QDir::Hidden | QDir::NoSymLinks,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        if (!it.fileInfo().isFile())
            continue;
        files.append(FolderFile{root.relativeFilePath(path), path});
    }
    std::sort(files.begin(), files.end(), [](const FolderFile &a, const FolderFile &b) {
        return a.relativePath < b.relativePath;
    });
    return files;
}

Result<QByteArray> packFolder(const QString &folder)
{
    const Result<FolderImage> image = FolderImage::read(folder);
    if (!image)
        return makeError(image.error());
    return image->pack();
}

Result<void> extractArchive(QByteArrayView archive, const QString &folder)
{
    const Result<QList<ZipDirectoryEntry>> directory = readZipDirectory(archive);
    if (!directory)
        return makeError(archiveUnreadable());

    const QString root = QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
    QStringList targets;
    targets.reserve(directory->size());
    for (const ZipDirectoryEntry &entry : *directory) {
        const QString target = entryTarget(root, entry.name);
        if (target.isEmpty())
            return makeError(unsafeEntryName(entry.name));
        targets.append(target);
    }

    const QDir rootDir(root);
    if (rootDir.exists()
        && !rootDir.isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden
                            | QDir::System)) {
        return makeError(folderNotEmpty(root));
    }
    if (!QDir().mkpath(root))
        return makeError(folderNotCreated(root));

    for (qsizetype i = 0; i < directory->size(); ++i) {
        const ZipDirectoryEntry &entry = directory->at(i);
        const QString &target = targets.at(i);
        if (isFolderEntry(entry.name)) {
            if (!QDir().mkpath(target))
                return makeError(folderNotCreated(target));
            continue;
        }
        if (!QDir().mkpath(QFileInfo(target).absolutePath()))
            return makeError(parentNotCreated(target));
        const Result<QByteArray> data = extractZipEntry(archive, entry);
        if (!data)
            return makeError(entryNotUnpacked(target));
        QFile out(target);
        if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate)
            || out.write(*data) != data->size() || !out.flush()) {
            return makeError(fileNotWritten(target));
        }
    }
    return {};
}

} // namespace fb::app
