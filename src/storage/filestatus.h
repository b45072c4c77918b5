#pragma once

#include "core/result.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <optional>

struct stat;

namespace fb::app {

// What the file system says of a regular file at one moment. Any write to the file moves its
// change time, and a replacement by rename gives it another inode, so an equal status means
// nobody wrote the file in between (unless two writes fell within one tick of the file
// system's clock, which callers that care about guard against by comparing contents).
struct FileStatus
{
    qint64 size = -1;
    qint64 modifiedNs = 0;
    qint64 changedNs = 0;
    quint64 inode = 0;
    quint64 device = 0;

    bool operator==(const FileStatus &) const = default;
};

FileStatus fileStatusOf(const struct stat &info);

// The status of the regular file at path, without following a symbolic link; nothing when
// there is no regular file there.
std::optional<FileStatus> fileStatus(const QString &path);

// A file's bytes together with the status of the very file they were read from.
struct FileContents
{
    QByteArray bytes;
    FileStatus status;
};

// Reads a regular file whole with one open, fstat, read and close. Nothing when the file does
// not exist; "Cannot read file: %1" when it exists but cannot be read (or is no regular file:
// reading a pipe or a device could block the server).
Result<std::optional<FileContents>> readFileContents(const QString &path);

// A 64-bit digest of bytes that tells whether they changed since this process last saw them.
// It is not stable across processes and never leaves memory.
quint64 contentDigest(QByteArrayView bytes);

// Brings a folder's entries (renames and removals inside it) to the disk.
bool syncFolder(const QString &folder);

} // namespace fb::app
