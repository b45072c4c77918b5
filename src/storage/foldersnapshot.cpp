#include "storage/foldersnapshot.h"

#include "storage/folderwatch.h"
#include "storage/projectfolder.h"

#include <QDir>
#include <QFile>
#include <QHash>

#include <chrono>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

// File systems stamp modification times with a coarse clock (a few milliseconds, a whole
// second or two on some). A file modified less than this long before its status was recorded
// may be modified again without any visible change of status, so it is compared by content.
constexpr qint64 racyWindowNs = 2'000'000'000;

qint64 nowNs()
{
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

FileStatus statusOf(const struct stat &info)
{
    return fileStatusOf(info);
}

quint64 digestOf(const QByteArray &bytes)
{
    return contentDigest(bytes);
}

// Unreadable files get a digest no content has in practice, so they compare as changed.
quint64 digestOfFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return ~quint64(0);
    return digestOf(file.readAll());
}

// Walks the folder tree with the POSIX calls directly: a status per file is all that is
// needed, and a project holds thousands of files.
template<typename Visit>
void walkWatchedFiles(const QByteArray &folder, const QString &relativePrefix, Visit &&visit)
{
    DIR *dir = ::opendir(folder.constData());
    if (!dir)
        return;
    const int dirFd = ::dirfd(dir);
    while (const dirent *entry = ::readdir(dir)) {
        const char *name = entry->d_name;
        if (name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0)))
            continue;
        struct stat info;
        if (::fstatat(dirFd, name, &info, AT_SYMLINK_NOFOLLOW) != 0)
            continue;
        const QString fileName = QFile::decodeName(name);
        if (S_ISDIR(info.st_mode)) {
            walkWatchedFiles(folder + '/' + name, relativePrefix + fileName + u'/', visit);
        } else if (S_ISREG(info.st_mode) && isWatchedProjectFile(fileName)) {
            visit(relativePrefix + fileName, info);
        }
    }
    ::closedir(dir);
}

} // namespace

bool isWatchedProjectFile(const QString &fileName)
{
    return fileName.endsWith(u".json"_s, Qt::CaseInsensitive)
           || fileName.endsWith(u".yaml"_s, Qt::CaseInsensitive);
}

FolderSnapshot::FolderSnapshot(Detection detection)
    : m_detection(detection)
{}
FolderSnapshot::~FolderSnapshot() = default;

bool FolderSnapshot::isRacy(const Entry &entry) const
{
    return entry.status.modifiedNs + racyWindowNs >= entry.recordedNs;
}

void FolderSnapshot::take(const QString &folder)
{
    beginTake(folder);
    finishTake(folder);
}

void FolderSnapshot::beginTake(const QString &folder)
{
    // The watch starts before anything is read, so a change made meanwhile is reported too.
    m_watch.reset();
    if (m_detection == Detection::KernelReports)
        m_watch = std::make_unique<FolderWatch>(folder);
    m_noted.clear();
}

void FolderSnapshot::noteContents(const QString &relativePath, const QByteArray &bytes)
{
    m_noted.insert(relativePath, digestOf(bytes));
}

void FolderSnapshot::finishTake(const QString &folder)
{
    // Without the kernel's reports a file might change between its reading and the status
    // recorded here, so noted contents are trusted only while a watch runs.
    const bool trustNoted = m_watch && m_watch->isValid();
    m_entries.clear();
    const qint64 now = nowNs();
    const QDir root(folder);
    walkWatchedFiles(QFile::encodeName(folder), QString(),
                     [&](const QString &relative, const struct stat &info) {
                         const auto noted = m_noted.constFind(relative);
                         const quint64 digest = trustNoted && noted != m_noted.constEnd()
                                                    ? *noted
                                                    : digestOfFile(root.filePath(relative));
                         m_entries.insert(relative, {statusOf(info), digest, now});
                     });
    m_noted.clear();
}

void FolderSnapshot::update(const QString &folder, const FolderWriteReport &report)
{
    const qint64 now = nowNs();
    for (const QString &removed : report.removed)
        m_entries.remove(removed);
    for (auto written = report.written.cbegin(); written != report.written.cend(); ++written) {
        if (!isWatchedProjectFile(written.key()))
            continue;
        struct stat info;
        const QByteArray path = QFile::encodeName(QDir(folder).filePath(written.key()));
        if (::stat(path.constData(), &info) != 0) {
            m_entries.remove(written.key());
            continue;
        }
        m_entries.insert(written.key(), {statusOf(info), digestOf(written.value()), now});
    }
}

bool FolderSnapshot::hasChanged(const QString &folder)
{
    if (!m_watch)
        return scanWholeFolder(folder);
    FolderWatch::Changes changes = m_watch->takeChanges();
    if (changes.needsFullScan) {
        // Watch the tree afresh (a new folder needs a watch of its own), then compare it all.
        m_watch = std::make_unique<FolderWatch>(folder);
        return scanWholeFolder(folder);
    }
    // The reports name every file touched since the last call, this server's own saves
    // included; those compare equal to what the save recorded.
    bool changed = false;
    for (const QString &relative : std::as_const(changes.files)) {
        if (isWatchedProjectFile(relative) && hasFileChanged(folder, relative))
            changed = true;
    }
    return changed;
}

bool FolderSnapshot::hasFileChanged(const QString &folder, const QString &relative)
{
    const QString path = QDir(folder).filePath(relative);
    struct stat info;
    const bool exists = ::stat(QFile::encodeName(path).constData(), &info) == 0
                        && S_ISREG(info.st_mode);
    const auto known = m_entries.find(relative);
    if (!exists)
        return known != m_entries.end();
    if (known == m_entries.end())
        return true;
    const FileStatus status = statusOf(info);
    if (status == known->status && !isRacy(*known))
        return false;
    if (digestOfFile(path) != known->digest)
        return true;
    known->status = status;
    known->recordedNs = nowNs();
    return false;
}

bool FolderSnapshot::scanWholeFolder(const QString &folder)
{
    const qint64 now = nowNs();
    const QDir root(folder);
    bool changed = false;
    qsizetype seen = 0;
    walkWatchedFiles(QFile::encodeName(folder), QString(),
                     [&](const QString &relative, const struct stat &info) {
                         if (changed)
                             return;
                         const auto known = m_entries.find(relative);
                         if (known == m_entries.end()) {
                             changed = true;
                             return;
                         }
                         ++seen;
                         const FileStatus status = statusOf(info);
                         if (status == known->status && !isRacy(*known))
                             return;
                         if (digestOfFile(root.filePath(relative)) != known->digest) {
                             changed = true;
                             return;
                         }
                         // Same bytes: remember the new status, so the file is not read again.
                         known->status = status;
                         known->recordedNs = now;
                     });
    return changed || seen != m_entries.size();
}

} // namespace fb::app
