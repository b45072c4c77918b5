#include "storage/folderimage.h"

#include "storage/folderarchive.h"
#include "storage/projectfolder.h"
#include "storage/zip/crc32.h"
#include "storage/zip/zipreader.h"
#include "storage/zip/zipwriter.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QSet>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

QString unreadable(const QString &path)
{
    return u"Could not read a project file: %1"_s.arg(QDir::toNativeSeparators(path));
}

} // namespace

Result<FolderImage> FolderImage::read(const QString &folder)
{
    if (!QFileInfo(folder).isDir()) {
        return makeError(
            u"The project folder does not exist: %1"_s.arg(QDir::toNativeSeparators(folder)));
    }
    FolderImage image;
    image.m_folder = folder;
    for (const FolderFile &file : listFolderFiles(folder)) {
        QFile in(file.absolutePath);
        if (!in.open(QIODevice::ReadOnly))
            return makeError(unreadable(file.absolutePath));
        File entry;
        entry.size = in.size();
        entry.isHeld = entry.size <= kHeldInMemory;
        if (entry.isHeld) {
            entry.bytes = in.readAll();
            entry.size = entry.bytes.size();
            entry.crc = crc32(entry.bytes);
        } else {
            // Large files are only measured, in pieces, so memory stays small whatever they hold.
            qint64 read = 0;
            while (!in.atEnd()) {
                const QByteArray piece = in.read(FolderImage::kHeldInMemory);
                if (piece.isEmpty())
                    break;
                entry.crc = crc32(piece, entry.crc);
                read += piece.size();
            }
            entry.size = read;
        }
        if (in.error() != QFileDevice::NoError)
            return makeError(unreadable(file.absolutePath));
        image.m_files.insert_or_assign(file.relativePath, std::move(entry));
    }
    return image;
}

void FolderImage::apply(const FolderWriteReport &report)
{
    for (const QString &removed : report.removed)
        m_files.erase(removed);
    for (auto written = report.written.cbegin(); written != report.written.cend(); ++written) {
        m_files.insert_or_assign(written.key(), File{written.value(), written.value().size(),
                                                     crc32(written.value()), true});
    }
}

Result<void> FolderImage::writeTo(ZipStreamWriter &writer) const
{
    return writeTo(writer, FolderWriteReport());
}

Result<void> FolderImage::writeTo(ZipStreamWriter &writer, const FolderWriteReport &pending) const
{
    const QSet<QString> removed(pending.removed.cbegin(), pending.removed.cend());
    // The pending files in archive order, merged into the held ones as the writing goes.
    QStringList pendingPaths = pending.written.keys();
    std::sort(pendingPaths.begin(), pendingPaths.end());
    auto nextAdded = pendingPaths.cbegin();
    const auto writePending = [&](const QString &path) {
        return writer.addBytes(path, pending.written.value(path));
    };
    for (const auto &[path, file] : m_files) {
        for (; nextAdded != pendingPaths.cend() && *nextAdded < path; ++nextAdded) {
            if (Result<void> written = writePending(*nextAdded); !written)
                return written;
        }
        if (nextAdded != pendingPaths.cend() && *nextAdded == path) {
            ++nextAdded;
            if (Result<void> replaced = writePending(path); !replaced)
                return replaced;
            continue;
        }
        if (removed.contains(path))
            continue;
        const Result<void> kept = file.isHeld ? writer.addBytes(path, file.bytes, file.crc)
                                              : writer.addFile(path, m_folder + u'/' + path,
                                                               file.size, file.crc);
        if (!kept)
            return kept;
    }
    for (; nextAdded != pendingPaths.cend(); ++nextAdded) {
        if (Result<void> written = writePending(*nextAdded); !written)
            return written;
    }
    return {};
}

bool FolderImage::holdsExactly(const QList<ZipDirectoryEntry> &directory) const
{
    std::size_t files = 0;
    for (const ZipDirectoryEntry &entry : directory) {
        if (entry.name.endsWith(u'/'))
            continue;
        ++files;
        const auto found = m_files.find(entry.name);
        if (found == m_files.end() || quint64(found->second.size) != entry.uncompressedSize
            || found->second.crc != entry.crc32) {
            return false;
        }
    }
    return files == m_files.size();
}

Result<QByteArray> FolderImage::pack() const
{
    QByteArray bytes;
    {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        ZipStreamWriter writer(&buffer);
        if (Result<void> written = writeTo(writer); !written)
            return makeError(written.error());
        if (Result<void> finished = writer.finish(); !finished)
            return makeError(finished.error());
    }
    return bytes;
}

} // namespace fb::app
