#pragma once

#include "core/result.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>
#include <QStringView>

#include <functional>

namespace fb::app {

class ZipSource;

// What the central directory of an archive says about one entry, with the ZIP64 values in
// place of the 32-bit fields that refer to them.
struct ZipDirectoryEntry
{
    QString name;
    quint16 method = 0;
    quint16 flags = 0;
    quint32 crc32 = 0;
    quint64 compressedSize = 0;
    quint64 uncompressedSize = 0;
    quint64 localHeaderOffset = 0;
};

inline constexpr quint16 kZipStored = 0;
inline constexpr quint16 kZipDeflated = 8;

// Reads the central directory of a ZIP archive, ZIP64 archives included (the ZIP64 end record
// when its locator is present, and the ZIP64 extra field of each header). Every field is checked
// against the archive's bounds; a record that does not fit fails the whole read, and so does a
// name that two entries share. The failure is a sentence from zipmessages.h.
Result<QList<ZipDirectoryEntry>> readZipDirectory(ZipSource &archive);
Result<QList<ZipDirectoryEntry>> readZipDirectory(QByteArrayView archive);

// Receives an entry's bytes piece by piece; a failure stops the reading and is passed on.
using ZipEntrySink = std::function<Result<void>(QByteArrayView piece)>;

// Hands the bytes of a stored or deflated entry to `sink` in pieces of at most a few hundred
// KiB, decoding deflated entries in bounded memory. The entry must give exactly its declared
// uncompressed size and CRC-32: decoding stops as soon as the data runs past the declared
// size, and a short entry or a wrong checksum fails once the entry is read. The sink has then
// been given data that must be discarded. Failures name the entry.
Result<void> readZipEntry(ZipSource &archive, const ZipDirectoryEntry &entry,
                          const ZipEntrySink &sink);

// The bytes of an entry, read into memory with the checks of readZipEntry(). An entry larger
// than kInflateOutputLimit (64 MiB) is refused.
Result<QByteArray> extractZipEntry(QByteArrayView archive, const ZipDirectoryEntry &entry);

// The bytes of the entry named exactly `name`.
Result<QByteArray> extractZipEntry(QByteArrayView archive, QStringView name);

} // namespace fb::app
