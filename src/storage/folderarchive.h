#pragma once

#include "core/result.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>

namespace fb::app {

class ZipSource;

// A regular file found under a folder: its path relative to the folder with "/" as the
// separator, and its absolute path.
struct FolderFile
{
    QString relativePath;
    QString absolutePath;
};

// Every regular file under `folder`, recursively, hidden ones included, sorted by relative
// path. Symbolic links are neither listed nor followed, so nothing outside the folder is
// reached. A missing folder gives an empty list.
QList<FolderFile> listFolderFiles(const QString &folder);

// Packs every regular file under `folder` into archive bytes, sorted by relative path, exactly
// as a save packs a bundle: packing an unchanged folder gives the same bytes as its last save.
// Fails when the folder is missing or a file cannot be read.
Result<QByteArray> packFolder(const QString &folder);

// Bounds on what an archive may unpack to, checked against the sizes its directory declares
// before anything is written.
struct UnpackLimits
{
    // A project is text plus its media; 16 GiB is far beyond any project and still leaves the
    // disk it is unpacked on usable.
    static constexpr quint64 kMaxTotalSize = quint64(16) << 30;
    // Text deflates to a third or a quarter of its size and media hardly at all, so a project
    // archive unpacks to a few times its size. Deflate can reach about a thousand times, but
    // only on long runs of the same bytes: a ratio past 100 is a zip bomb. Archives that unpack
    // to 256 MiB or less are let through whatever their ratio, since they cannot do harm and
    // small projects of repetitive text may compress well.
    static constexpr quint64 kRatioCheckedAbove = quint64(256) << 20;
    static constexpr quint64 kMaxRatio = 100;

    quint64 maxTotalSize = kMaxTotalSize;
    quint64 ratioCheckedAbove = kRatioCheckedAbove;
    quint64 maxRatio = kMaxRatio;
};

// Writes every entry of `archive` under `folder`, which must be absent or empty.
//
// Before anything is written, the archive is refused when an entry name is unsafe (absolute,
// holding a ".." component or a backslash, or otherwise resolving outside the folder), when two
// entries unpack to the same path, when the declared sizes break `limits`, or when they exceed
// the free space of the target's file system. Entries are then decoded to disk in bounded
// memory into a temporary sibling, "<folder>.unpacking-<pid>-<n>", and each must give exactly
// its declared size and CRC-32. Only when every entry is written and verified is the sibling
// renamed to `folder`; on any failure it is removed and `folder` is left as it was. Siblings
// left by processes that no longer run are removed first. Entry names ending in "/" are
// folders. Messages name the entry or the path inside `folder`; callers add the archive's path.
Result<void> extractArchive(ZipSource &archive, const QString &folder,
                            const UnpackLimits &limits = {});
Result<void> extractArchive(QByteArrayView archive, const QString &folder,
                            const UnpackLimits &limits = {});

} // namespace fb::app
