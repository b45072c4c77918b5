#include "storage/filestatus.h"

#include <QDir>
#include <QFile>
#include <QHashFunctions>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

qint64 toNs(const timespec &time)
{
    return qint64(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

QString cannotRead(const QString &path)
{
    return u"Cannot read file: %1"_s.arg(QDir::toNativeSeparators(path));
}

} // namespace

FileStatus fileStatusOf(const struct stat &info)
{
    return {qint64(info.st_size), toNs(info.st_mtim), toNs(info.st_ctim), quint64(info.st_ino),
            quint64(info.st_dev)};
}

std::optional<FileStatus> fileStatus(const QString &path)
{
    struct stat info;
    if (::lstat(QFile::encodeName(path).constData(), &info) != 0 || !S_ISREG(info.st_mode))
        return std::nullopt;
    return fileStatusOf(info);
}

Result<std::optional<FileContents>> readFileContents(const QString &path)
{
    const int fd = ::open(QFile::encodeName(path).constData(),
                          O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (fd < 0) {
        // A path through something that is not a folder names no file either.
        if (errno == ENOENT || errno == ENOTDIR)
            return std::optional<FileContents>();
        return makeError(cannotRead(path));
    }
    FileContents contents;
    struct stat info;
    bool ok = ::fstat(fd, &info) == 0 && S_ISREG(info.st_mode);
    if (ok) {
        contents.status = fileStatusOf(info);
        contents.bytes.resize(qsizetype(info.st_size));
        qsizetype done = 0;
        while (ok && done < contents.bytes.size()) {
            const ssize_t got = ::read(fd, contents.bytes.data() + done,
                                       size_t(contents.bytes.size() - done));
            if (got < 0 && errno == EINTR)
                continue;
            if (got <= 0) {
                // The file shrank while it was read: what was read is not the whole file.
                ok = false;
                break;
            }
            done += got;
        }
    }
    ::close(fd);
    if (!ok)
        return makeError(cannotRead(path));
    return std::optional<FileContents>(std::move(contents));
}

quint64 contentDigest(QByteArrayView bytes)
{
    static_assert(sizeof(size_t) == 8, "a digest needs 64 bits to make a missed edit unlikely");
    return quint64(qHashBits(bytes.data(), size_t(bytes.size()), 0));
}

bool syncFolder(const QString &folder)
{
    const int fd = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return false;
    const bool synced = ::fsync(fd) == 0;
    ::close(fd);
    return synced;
}

} // namespace fb::app
