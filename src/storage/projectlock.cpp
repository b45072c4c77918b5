#include "storage/projectlock.h"

#include "storage/storagepaths.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace fb::app {

ProjectLock::ProjectLock(QString lockFilePath)
    : m_path(std::move(lockFilePath))
{}

ProjectLock::~ProjectLock()
{
    if (m_fd >= 0)
        ::close(m_fd);
}

ProjectLock::Hold &ProjectLock::Hold::operator=(Hold &&other) noexcept
{
    if (this != &other) {
        if (m_lock)
            m_lock->release();
        m_lock = std::exchange(other.m_lock, nullptr);
    }
    return *this;
}

ProjectLock::Hold::~Hold()
{
    if (m_lock)
        m_lock->release();
}

QString ProjectLock::lockFileFor(const QString &projectPath)
{
    return QDir(appDataFolder()).filePath(u"locks/"_s + workingCopyName(projectPath) + u".lock"_s);
}

Result<ProjectLock::Hold> ProjectLock::acquire(std::chrono::milliseconds patience)
{
    // Held already further up this call: the lock is the process's, not the caller's.
    if (m_depth > 0) {
        ++m_depth;
        return Hold(this);
    }
    if (m_fd < 0) {
        QDir().mkpath(QFileInfo(m_path).absolutePath());
        m_fd = ::open(QFile::encodeName(m_path).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
        if (m_fd < 0)
            return Hold(); // nowhere to coordinate: go on alone
    }
    const auto deadline = std::chrono::steady_clock::now() + patience;
    for (;;) {
        if (::flock(m_fd, LOCK_EX | LOCK_NB) == 0) {
            m_depth = 1;
            return Hold(this);
        }
        if (errno != EWOULDBLOCK && errno != EINTR)
            return Hold();
        if (std::chrono::steady_clock::now() >= deadline) {
            return makeError(
                u"Another fablery-mcp server is busy with this project and did not finish within "
                u"%1 "
                u"seconds, so nothing was done; try again."_s.arg(
                    std::chrono::duration_cast<std::chrono::seconds>(patience).count()));
        }
        QThread::msleep(2);
    }
}

void ProjectLock::release()
{
    if (m_depth > 0 && --m_depth == 0)
        ::flock(m_fd, LOCK_UN);
}

} // namespace fb::app
