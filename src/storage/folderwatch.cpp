#include "storage/folderwatch.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>

#ifdef Q_OS_LINUX
#include <cerrno>

#include <sys/inotify.h>
#include <sys/vfs.h>
#include <unistd.h>
#endif

namespace fb::app {

#ifdef Q_OS_LINUX

namespace {

// File systems on which other hosts can write: the kernel never reports their changes.
bool isNetworkFileSystem(const QString &folder)
{
    struct statfs info;
    if (::statfs(QFile::encodeName(folder).constData(), &info) != 0)
        return true;
    switch (static_cast<unsigned long>(info.f_type)) {
    case 0x6969:     // NFS
    case 0x517B:     // SMB
    case 0xFF534D42: // CIFS
    case 0xFE534D42: // SMB2
    case 0x65735546: // FUSE
    case 0x73757245: // Coda
    case 0x5346414F: // AFS
    case 0x01021997: // 9P
    case 0x00C36400: // Ceph
    case 0x786F4256: // VirtualBox shared folders
        return true;
    default:
        return false;
    }
}

constexpr uint32_t watchedEvents = IN_CREATE | IN_DELETE | IN_MODIFY | IN_ATTRIB | IN_CLOSE_WRITE
                                   | IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF
                                   | IN_ONLYDIR;

} // namespace

FolderWatch::FolderWatch(const QString &folder)
{
    if (isNetworkFileSystem(folder))
        return;
    m_fd = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (m_fd < 0)
        return;
    watchTree(folder, QString());
}

FolderWatch::~FolderWatch()
{
    if (m_fd >= 0)
        ::close(m_fd);
}

void FolderWatch::watchTree(const QString &folder, const QString &relative)
{
    if (m_fd < 0)
        return;
    const int wd = ::inotify_add_watch(m_fd, QFile::encodeName(folder).constData(), watchedEvents);
    if (wd < 0) {
        // Without a watch on every folder the reports would be incomplete.
        ::close(m_fd);
        m_fd = -1;
        return;
    }
    m_folders.insert(wd, relative);
    // The subfolders, found without QDir::entryList, which would sort and examine each of the
    // thousands of object files.
    QDirIterator it(folder, QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden | QDir::NoSymLinks);
    while (it.hasNext()) {
        it.next();
        watchTree(it.filePath(), relative + it.fileName() + u'/');
    }
}

FolderWatch::Changes FolderWatch::takeChanges()
{
    Changes changes;
    if (m_fd < 0) {
        changes.needsFullScan = true;
        return changes;
    }
    alignas(struct inotify_event) char buffer[16384];
    for (;;) {
        const ssize_t length = ::read(m_fd, buffer, sizeof buffer);
        if (length <= 0) {
            if (length < 0 && errno != EAGAIN && errno != EINTR)
                changes.needsFullScan = true;
            if (length < 0 && errno == EINTR)
                continue;
            break;
        }
        for (ssize_t offset = 0; offset < length;) {
            const auto *event = reinterpret_cast<const struct inotify_event *>(buffer + offset);
            offset += ssize_t(sizeof(struct inotify_event) + event->len);
            if (event->mask
                & (IN_Q_OVERFLOW | IN_IGNORED | IN_DELETE_SELF | IN_MOVE_SELF | IN_ISDIR)) {
                changes.needsFullScan = true;
                continue;
            }
            if (event->len == 0)
                continue;
            const auto folder = m_folders.constFind(event->wd);
            if (folder == m_folders.constEnd()) {
                changes.needsFullScan = true;
                continue;
            }
            changes.files.insert(*folder + QFile::decodeName(event->name));
        }
    }
    return changes;
}

#else

FolderWatch::FolderWatch(const QString &) {}
FolderWatch::~FolderWatch() = default;
void FolderWatch::watchTree(const QString &, const QString &) {}
FolderWatch::Changes FolderWatch::takeChanges()
{
    return {true, {}};
}

#endif

} // namespace fb::app
