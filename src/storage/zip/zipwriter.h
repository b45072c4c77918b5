#pragma once

#include "core/result.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>

#include <memory>
#include <optional>

class QIODevice;

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
// are written as UTF-8 and cut to 65,535 bytes. ZIP64 records are added only when the archive
// needs them (more than 65,535 entries, or a size or offset of 4 GiB or more), so any other
// archive is a plain ZIP archive, the same bytes ZipStreamWriter gives.
QByteArray writeZip(const QList<ZipEntry> &entries);

// Writes an archive like writeZip() straight to a device, entry by entry, so an archive with
// large files never has to be in memory: a file on disk is copied in pieces. It keeps the
// SHA-256 of what it wrote. After a failure the device holds a partial archive that the
// caller must discard (a QSaveFile that is not committed), and every later call fails the
// same way.
class ZipStreamWriter
{
public:
    explicit ZipStreamWriter(QIODevice *device);
    ~ZipStreamWriter();

    ZipStreamWriter(const ZipStreamWriter &) = delete;
    ZipStreamWriter &operator=(const ZipStreamWriter &) = delete;

    Result<void> addBytes(const QString &name, QByteArrayView data,
                          std::optional<quint32> crc = std::nullopt);

    // Copies the file at `path`, which must still have the size and CRC-32 the caller recorded
    // for it; a file that changed since fails the write.
    Result<void> addFile(const QString &name, const QString &path, qint64 size, quint32 crc);

    // Writes the central directory and the end records.
    Result<void> finish();

    // The SHA-256 of the whole archive, once finish() has succeeded.
    QByteArray sha256() const;
    // The bytes written so far.
    qint64 size() const;

private:
    class Private;
    std::unique_ptr<Private> m_d;
};

} // namespace fb::app
