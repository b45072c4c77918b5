#pragma once

#include "core/result.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <map>

namespace fb::app {

struct FolderWriteReport;
struct ZipDirectoryEntry;
class ZipStreamWriter;

// The files of a bundle's working copy as the entries of its archive, so that a save writes the
// bundle from what changed instead of reading the whole folder again. The project's own files
// are held in memory; large files (images and other media, which the server never changes) are
// held as their size and CRC-32 only and copied from the folder when the bundle is written.
// Writing gives exactly the bytes packFolder() gives for the folder.
class FolderImage
{
public:
    // Files larger than this are not held in memory.
    static constexpr qint64 kHeldInMemory = 1 << 20;

    // Reads every regular file of the folder (hidden ones included, links left out).
    static Result<FolderImage> read(const QString &folder);

    // Takes in the files a save wrote or removed.
    void apply(const FolderWriteReport &report);
    // Writes the archive of the folder's files through `writer` (without finishing it), as they
    // will be once `pending` is applied.
    Result<void> writeTo(ZipStreamWriter &writer, const FolderWriteReport &pending) const;
    Result<void> writeTo(ZipStreamWriter &writer) const;
    // The same archive in memory; fails when a large file changed since it was read.
    Result<QByteArray> pack() const;
    bool isEmpty() const { return m_files.empty(); }
    // Whether the folder holds exactly the files an archive's directory lists (folder entries
    // aside), each with the size and CRC-32 the directory gives.
    bool holdsExactly(const QList<ZipDirectoryEntry> &directory) const;

private:
    struct File
    {
        // Empty for a file that is not held: it is read from the folder when written.
        QByteArray bytes;
        qint64 size = 0;
        quint32 crc = 0;
        bool isHeld = true;
    };
    QString m_folder;
    // Sorted by relative path, the order of the archive's entries.
    std::map<QString, File> m_files;
};

} // namespace fb::app
