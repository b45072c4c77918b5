#pragma once

#include "core/result.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>
#include <QStringView>

namespace fb::app {

// What the central directory of an archive says about one entry.
struct ZipDirectoryEntry
{
    QString name;
    quint16 method = 0;
    quint32 compressedSize = 0;
    quint32 uncompressedSize = 0;
    quint32 localHeaderOffset = 0;
};

inline constexpr quint16 kZipStored = 0;
inline constexpr quint16 kZipDeflated = 8;

// Reads the central directory of a ZIP archive held whole in memory. Every field is checked
// against the archive's bounds; a record that does not fit fails the whole read. Failures
// carry a short sentence for logs only: callers word the error their users see.
Result<QList<ZipDirectoryEntry>> readZipDirectory(QByteArrayView archive);

// The bytes of an entry that is stored or deflated; any other method fails. Deflated entries
// are cut short once they pass kInflateOutputLimit. The CRC-32 is not checked.
Result<QByteArray> extractZipEntry(QByteArrayView archive, const ZipDirectoryEntry &entry);

// The bytes of the first entry named exactly `name`.
Result<QByteArray> extractZipEntry(QByteArrayView archive, QStringView name);

} // namespace fb::app
