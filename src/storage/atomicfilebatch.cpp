#include "storage/atomicfilebatch.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <cerrno>

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

namespace fb::app {

namespace {

QString cannotWrite(const QString &path)
{
    return QStringLiteral("Cannot write file: %1").arg(QDir::toNativeSeparators(path));
}

QString failedToWrite(const QString &path)
{
    return QStringLiteral("Failed to write file: %1").arg(QDir::toNativeSeparators(path));
}

bool writeAll(int fd, const QByteArray &bytes)
{
    const char *data = bytes.constData();
    qsizetype left = bytes.size();
    while (left > 0) {
        const ssize_t written = ::write(fd, data, size_t(left));
        if (written < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        data += written;
        left -= written;
    }
    return true;
}

// Brings the data of the given files to the disk. One file is flushed on its own; many are
// flushed with their file system in one go (Linux), which the disk does in one journal commit.
bool flushToDisk(const QStringList &paths)
{
#ifdef Q_OS_LINUX
    if (paths.size() > 1) {
        const int fd = ::open(QFile::encodeName(paths.first()).constData(), O_RDONLY | O_CLOEXEC);
        if (fd >= 0) {
            const bool synced = ::syncfs(fd) == 0;
            ::close(fd);
            if (synced)
                return true;
        }
    }
#endif
    for (const QString &path : paths) {
        const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
        if (fd < 0)
            return false;
        const bool synced = ::fsync(fd) == 0;
        ::close(fd);
        if (!synced)
            return false;
    }
    return true;
}

const QString temporarySuffix = QStringLiteral(".saving");

// "<target>.<pid>-<counter>.saving": the process that staged it.
qint64 stagingProcess(const QString &name)
{
    const QString stem = name.chopped(temporarySuffix.size());
    const QString tag = stem.mid(stem.lastIndexOf(u'.') + 1);
    bool ok = false;
    const qint64 pid = tag.section(u'-', 0, 0).toLongLong(&ok);
    return ok ? pid : -1;
}

bool isRunning(qint64 pid)
{
    return pid > 0 && (::kill(pid_t(pid), 0) == 0 || errno == EPERM);
}

} // namespace

void removeAbandonedTemporaries(const QString &folder)
{
    QStringList folders{folder};
    const QDir root(folder);
    for (const QString &child : root.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
        folders.append(root.filePath(child));
    // Listed without a name filter: QDir's wildcard matching costs more than the whole check
    // in a folder of thousands of objects.
    for (const QString &path : std::as_const(folders)) {
        QDirIterator it(path, QDir::Files);
        while (it.hasNext()) {
            it.next();
            if (it.fileName().endsWith(temporarySuffix) && !isRunning(stagingProcess(it.fileName())))
                QFile::remove(it.filePath());
        }
    }
}

AtomicFileBatch::~AtomicFileBatch()
{
    discard();
}

void AtomicFileBatch::discard()
{
    for (const Staged &staged : std::as_const(m_staged))
        QFile::remove(staged.temporary);
    m_staged.clear();
}

Result<void> AtomicFileBatch::stage(const QString &path, const QByteArray &bytes)
{
    // A target that is not a plain file (a folder in its place) could never be replaced.
    if (const QFileInfo target(path); target.exists() && !target.isFile())
        return makeError(cannotWrite(path));
    // A name no other writer uses: the target's name, the process and a counter.
    static quint64 counter = 0;
    const QString temporary = QStringLiteral("%1.%2-%3%4")
                                  .arg(path, QString::number(::getpid()), QString::number(++counter),
                                       temporarySuffix);
    const int fd = ::open(QFile::encodeName(temporary).constData(),
                          O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd < 0)
        return makeError(cannotWrite(path));
    m_staged.append({path, temporary});
    const bool written = writeAll(fd, bytes);
    if (::close(fd) != 0 || !written)
        return makeError(failedToWrite(path));
    return {};
}

Result<void> AtomicFileBatch::commit()
{
    QStringList temporaries;
    temporaries.reserve(m_staged.size());
    for (const Staged &staged : std::as_const(m_staged))
        temporaries.append(staged.temporary);
    if (!temporaries.isEmpty() && !flushToDisk(temporaries))
        return makeError(failedToWrite(m_staged.first().target));

    for (qsizetype i = 0; i < m_staged.size(); ++i) {
        const Staged &staged = m_staged.at(i);
        if (::rename(QFile::encodeName(staged.temporary).constData(),
                     QFile::encodeName(staged.target).constData()) != 0) {
            const QString target = staged.target;
            m_staged.remove(0, i);
            return makeError(failedToWrite(target));
        }
    }
    m_staged.clear();
    return {};
}

} // namespace fb::app
