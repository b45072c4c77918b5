#include "storage/folderimage.h"

#include "storage/folderarchive.h"
#include "storage/projectfolder.h"
#include "storage/zip/crc32.h"
#include "storage/zip/zipwriter.h"

#include <QDir>
#include <QFile>

namespace fb::app {

Result<FolderImage> FolderImage::read(const QString &folder)
{
    if (!QFileInfo(folder).isDir()) {
        return makeError(QStringLiteral("The project folder does not exist: %1")
                             .arg(QDir::toNativeSeparators(folder)));
    }
    FolderImage image;
    for (const FolderFile &file : listFolderFiles(folder)) {
        QFile in(file.absolutePath);
        QByteArray bytes;
        if (in.open(QIODevice::ReadOnly))
            bytes = in.readAll();
        if (!in.isOpen() || in.error() != QFileDevice::NoError) {
            return makeError(QStringLiteral("Could not read a project file: %1")
                                 .arg(QDir::toNativeSeparators(file.absolutePath)));
        }
        const quint32 crc = crc32(bytes);
        image.m_files.insert_or_assign(file.relativePath, File{std::move(bytes), crc});
    }
    return image;
}

void FolderImage::apply(const FolderWriteReport &report)
{
    for (const QString &removed : report.removed)
        m_files.erase(removed);
    for (auto written = report.written.cbegin(); written != report.written.cend(); ++written)
        m_files.insert_or_assign(written.key(), File{written.value(), crc32(written.value())});
}

QByteArray FolderImage::pack() const
{
    QList<ZipEntry> entries;
    entries.reserve(qsizetype(m_files.size()));
    for (const auto &[path, file] : m_files)
        entries.append(ZipEntry{path, file.bytes, file.crc});
    return writeZip(entries);
}

} // namespace fb::app
