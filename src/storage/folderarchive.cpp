#include "storage/folderarchive.h"

#include "storage/folderimage.h"
#include "storage/zip/zipmessages.h"
#include "storage/zip/zipreader.h"
#include "storage/zip/zipsource.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <limits>
#include <optional>

#include <fcntl.h>
#include <signal.h>
#include <sys/statvfs.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

const QString kUnpackingTag = u".unpacking-"_s;

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

// Where each entry lands, after checking that every name is safe and that no two entries land
// on the same file or folder ("a.json" and "./a.json" would).
Result<QStringList> entryTargets(const QList<ZipDirectoryEntry> &directory, const QString &root)
{
    QStringList targets;
    targets.reserve(directory.size());
    QSet<QString> seen;
    seen.reserve(directory.size());
    for (const ZipDirectoryEntry &entry : directory) {
        const QString target = entryTarget(root, entry.name);
        if (target.isEmpty())
            return makeError(zipmessage::unsafeName(entry.name));
        const QString key = isFolderEntry(entry.name) ? target + u'/' : target;
        if (seen.contains(key))
            return makeError(zipmessage::duplicateTarget(target.mid(root.size() + 1)));
        seen.insert(key);
        targets.append(target);
    }
    return targets;
}

Result<quint64> checkDeclaredSizes(const QList<ZipDirectoryEntry> &directory, qint64 archiveSize,
                                   const UnpackLimits &limits)
{
    quint64 total = 0;
    for (const ZipDirectoryEntry &entry : directory) {
        const quint64 size = entry.uncompressedSize;
        total = size > std::numeric_limits<quint64>::max() - total
                    ? std::numeric_limits<quint64>::max()
                    : total + size;
    }
    if (total > limits.maxTotalSize)
        return makeError(zipmessage::tooLargeInTotal(limits.maxTotalSize));
    // total > ratio * size, without the product overflowing.
    if (total > limits.ratioCheckedAbove && limits.maxRatio > 0
        && (total - 1) / limits.maxRatio >= quint64(std::max<qint64>(archiveSize, 0))) {
        return makeError(zipmessage::tooCompressed(limits.maxRatio));
    }
    return total;
}

// The space free to this process on the file system that holds `path`, or on that of its
// nearest existing parent; nothing when it cannot be told.
std::optional<quint64> freeSpace(const QString &path)
{
    QString probe = path;
    while (!QFileInfo::exists(probe)) {
        const QString parent = QFileInfo(probe).path();
        if (parent == probe)
            return std::nullopt;
        probe = parent;
    }
    struct statvfs status
    {};
    if (::statvfs(QFile::encodeName(probe).constData(), &status) != 0)
        return std::nullopt;
    return quint64(status.f_bavail) * quint64(status.f_frsize);
}

// The same test as for the temporary files of a save (see atomicfilebatch.cpp): a process that
// cannot be signalled for want of permission still runs.
bool isRunning(qint64 pid)
{
    return pid > 0 && pid <= std::numeric_limits<pid_t>::max()
           && (::kill(pid_t(pid), 0) == 0 || errno == EPERM);
}

// Removes the "<root>.unpacking-<pid>-<n>" siblings of processes that no longer run, left when
// an extraction was interrupted. Links are never followed.
void removeAbandonedUnpackings(const QString &root)
{
    const QFileInfo info(root);
    const QString prefix = info.fileName() + kUnpackingTag;
    QDirIterator it(info.path(),
                    QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot | QDir::NoSymLinks);
    while (it.hasNext()) {
        it.next();
        const QString name = it.fileName();
        if (!name.startsWith(prefix))
            continue;
        bool isNumber = false;
        const qint64 pid = name.mid(prefix.size()).section(u'-', 0, 0).toLongLong(&isNumber);
        if (isNumber && !isRunning(pid))
            QDir(it.filePath()).removeRecursively();
    }
}

// The temporary sibling an extraction writes into; removed unless the extraction succeeds.
class UnpackingFolder
{
public:
    explicit UnpackingFolder(const QString &root)
    {
        static std::atomic<quint64> counter = 0;
        m_path = root + kUnpackingTag + QString::number(::getpid()) + u'-'
                 + QString::number(++counter);
    }

    ~UnpackingFolder()
    {
        if (!m_isKept)
            QDir(m_path).removeRecursively();
    }

    UnpackingFolder(const UnpackingFolder &) = delete;
    UnpackingFolder &operator=(const UnpackingFolder &) = delete;

    const QString &path() const { return m_path; }
    void keep() { m_isKept = true; }

private:
    QString m_path;
    bool m_isKept = false;
};

Result<void> writeEntry(ZipSource &archive, const ZipDirectoryEntry &entry, const QString &path,
                        const QString &shownPath)
{
    QFile out(path);
    if (!out.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered))
        return makeError(zipmessage::fileNotWritten(shownPath));
    const Result<void> read
        = readZipEntry(archive, entry, [&out, &shownPath](QByteArrayView piece) -> Result<void> {
              if (out.write(piece.data(), piece.size()) != piece.size())
                  return makeError(zipmessage::fileNotWritten(shownPath));
              return {};
          });
    if (!read)
        return read;
    out.close();
    if (out.error() != QFileDevice::NoError)
        return makeError(zipmessage::fileNotWritten(shownPath));
    return {};
}

Result<void> checkTargetFolder(const QString &root)
{
    const QFileInfo info(root);
    if (!info.exists())
        return {};
    if (!info.isDir())
        return makeError(zipmessage::folderNotCreated(root));
    if (!QDir(root).isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System))
        return makeError(zipmessage::folderNotEmpty(root));
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

Result<void> extractArchive(ZipSource &archive, const QString &folder, const UnpackLimits &limits)
{
    const Result<QList<ZipDirectoryEntry>> directory = readZipDirectory(archive);
    if (!directory)
        return makeError(directory.error());
    const QString root = QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
    const Result<QStringList> targets = entryTargets(*directory, root);
    if (!targets)
        return makeError(targets.error());
    const Result<quint64> total = checkDeclaredSizes(*directory, archive.size(), limits);
    if (!total)
        return makeError(total.error());
    if (const Result<void> checked = checkTargetFolder(root); !checked)
        return checked;
    if (const std::optional<quint64> available = freeSpace(root); available && *total > *available)
        return makeError(zipmessage::notEnoughSpace(*total, *available));

    if (!QDir().mkpath(QFileInfo(root).path()))
        return makeError(zipmessage::folderNotCreated(root));
    removeAbandonedUnpackings(root);
    UnpackingFolder unpacking(root);
    if (QFileInfo::exists(unpacking.path()) && !QDir(unpacking.path()).removeRecursively())
        return makeError(zipmessage::folderNotCreated(root));
    if (!QDir().mkdir(unpacking.path()))
        return makeError(zipmessage::folderNotCreated(root));

    for (qsizetype i = 0; i < directory->size(); ++i) {
        const ZipDirectoryEntry &entry = directory->at(i);
        const QString &target = targets->at(i);
        const QString path = unpacking.path() + target.mid(root.size());
        if (isFolderEntry(entry.name)) {
            if (!QDir().mkpath(path))
                return makeError(zipmessage::folderNotCreated(target));
            continue;
        }
        if (!QDir().mkpath(QFileInfo(path).path()))
            return makeError(zipmessage::parentNotCreated(target));
        if (const Result<void> written = writeEntry(archive, entry, path, target); !written)
            return written;
    }

    // The unpacked files are not forced to the disk: flushing them is slow (a whole file system's
    // worth of writes on a busy machine), and what they hold can always be unpacked again. A
    // power cut that loses some of them leaves a folder that no longer matches its archive,
    // which its user (the workspace compares every working copy with its bundle) notices.
    // An empty folder in the way is replaced in the same step; a folder that gained files
    // meanwhile is not.
    if (::rename(QFile::encodeName(unpacking.path()).constData(),
                 QFile::encodeName(root).constData())
        != 0) {
        const bool isTaken = errno == ENOTEMPTY || errno == EEXIST;
        return makeError(isTaken ? zipmessage::folderNotEmpty(root)
                                 : zipmessage::folderNotCreated(root));
    }
    unpacking.keep();
    return {};
}

Result<void> extractArchive(QByteArrayView archive, const QString &folder,
                            const UnpackLimits &limits)
{
    ZipSource source(archive);
    return extractArchive(source, folder, limits);
}

} // namespace fb::app
