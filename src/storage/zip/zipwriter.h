#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

namespace fb::app {

// One file of an archive: its name ("/" separates folders; a trailing "/" marks a folder)
// and its bytes.
struct ZipEntry
{
    QString name;
    QByteArray data;
    // The CRC-32 of data when the caller already knows it; computed when absent.
    std::optional<quint32> crc = std::nullopt;
};

// Packs the entries, in the given order, into a ZIP archive of stored entries. Every header
// carries the same fixed time stamp (1 January 1980) and no clock is read, so the same
// entries always give byte-identical archives; comparing archives compares contents. Names
// are written as UTF-8 and cut to 65,535 bytes. There is no ZIP64: sizes and offsets beyond
// 4 GiB and more than 65,535 entries are not representable.
QByteArray writeZip(const QList<ZipEntry> &entries);

} // namespace fb::app
