#pragma once

#include "core/result.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>

namespace fb::app {

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

// Writes every entry of `archive` under `folder`, which must be absent or empty. Entry names
// ending in "/" are folders. No entry may leave the folder: a name that is absolute, holds a
// ".." component or a backslash, or otherwise resolves outside the folder fails the
// extraction before anything is written.
Result<void> extractArchive(QByteArrayView archive, const QString &folder);

} // namespace fb::app
