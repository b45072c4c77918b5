#pragma once

#include "core/result.h"

#include <QByteArray>
#include <QString>

#include <map>

namespace fb::app {

struct FolderWriteReport;

// The files of a bundle's working copy held in memory as the entries of its archive, so that a
// save packs the bundle from what changed instead of reading the whole folder again. Packing
// gives exactly the bytes packFolder() gives for the folder.
class FolderImage
{
public:
    // Reads every regular file of the folder (hidden ones included, links left out).
    static Result<FolderImage> read(const QString &folder);

    // Takes in the files a save wrote or removed.
    void apply(const FolderWriteReport &report);
    QByteArray pack() const;
    bool isEmpty() const { return m_files.empty(); }

private:
    struct File
    {
        QByteArray bytes;
        quint32 crc = 0;
    };
    // Sorted by relative path, the order of the archive's entries.
    std::map<QString, File> m_files;
};

} // namespace fb::app
