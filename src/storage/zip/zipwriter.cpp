#include "storage/zip/zipwriter.h"

#include "storage/sha256.h"
#include "storage/zip/crc32.h"
#include "storage/zip/zipformat.h"
#include "storage/zip/zipmessages.h"

#include <QFile>
#include <QIODevice>

#include <functional>
#include <vector>

namespace fb::app {

using namespace zipformat;

namespace {

// The bytes of a file entry are copied in pieces of this size.
constexpr qint64 kCopyPiece = 262144;

// Lays out an archive of stored entries and hands its bytes to `output` in order. Both writers
// are built on it, so they give the same bytes.
class ArchiveBuilder
{
public:
    using Output = std::function<bool(QByteArrayView)>;

    explicit ArchiveBuilder(Output output)
        : m_output(std::move(output))
    {}

    bool beginEntry(const QString &name, quint32 crc, quint64 size)
    {
        StoredEntryRecord record{name.toUtf8().left(kMaxNameBytes), crc, size, m_offset};
        const bool written = write(localHeader(record));
        m_records.push_back(std::move(record));
        return written;
    }

    bool write(QByteArrayView bytes)
    {
        m_offset += quint64(bytes.size());
        return m_output(bytes);
    }

    bool finish()
    {
        const quint64 directoryOffset = m_offset;
        for (const StoredEntryRecord &record : m_records) {
            if (!write(centralHeader(record)))
                return false;
        }
        return write(directoryEnd(m_records.size(), directoryOffset, m_offset - directoryOffset));
    }

    quint64 offset() const { return m_offset; }

private:
    Output m_output;
    std::vector<StoredEntryRecord> m_records;
    quint64 m_offset = 0;
};

} // namespace

QByteArray writeZip(const QList<ZipEntry> &entries)
{
    qsizetype total = kEndRecordSize;
    for (const ZipEntry &entry : entries)
        total += kLocalHeaderSize + kCentralHeaderSize + 2 * entry.name.size() + entry.data.size();
    QByteArray archive;
    archive.reserve(total);
    ArchiveBuilder builder([&archive](QByteArrayView bytes) {
        archive.append(bytes);
        return true;
    });
    for (const ZipEntry &entry : entries) {
        builder.beginEntry(entry.name, entry.crc ? *entry.crc : crc32(entry.data),
                           quint64(entry.data.size()));
        builder.write(entry.data);
    }
    builder.finish();
    return archive;
}

class ZipStreamWriter::Private
{
public:
    explicit Private(QIODevice *device)
        : m_device(device)
        , m_builder([this](QByteArrayView bytes) { return output(bytes); })
    {}

    // Keeps the first failure; every later call reports it again.
    Result<void> fail(const QString &message)
    {
        if (m_error.isEmpty())
            m_error = message;
        return makeError(m_error);
    }

    Result<void> written(bool ok) { return ok ? Result<void>() : fail(zipmessage::notWritten()); }

    Result<void> copyFile(const QString &name, QFile &file, qint64 size, quint32 crc);

    QIODevice *m_device;
    ArchiveBuilder m_builder;
    Sha256 m_hash;
    QByteArray m_digest;
    QString m_error;

private:
    bool output(QByteArrayView bytes)
    {
        m_hash.addData(bytes);
        return m_device->write(bytes.data(), bytes.size()) == bytes.size();
    }
};

Result<void> ZipStreamWriter::Private::copyFile(const QString &name, QFile &file, qint64 size,
                                                quint32 crc)
{
    QByteArray piece(std::min(size, kCopyPiece), Qt::Uninitialized);
    quint32 copiedCrc = 0;
    for (qint64 left = size; left > 0;) {
        const qint64 got = file.read(piece.data(), std::min(left, kCopyPiece));
        if (got < 0)
            return fail(zipmessage::fileUnreadable(name));
        if (got == 0)
            return fail(zipmessage::fileChanged(name)); // it has become shorter
        const QByteArrayView bytes(piece.constData(), got);
        copiedCrc = crc32(bytes, copiedCrc);
        if (!m_builder.write(bytes))
            return fail(zipmessage::notWritten());
        left -= got;
    }
    char extra = 0;
    if (file.read(&extra, 1) != 0 || copiedCrc != crc)
        return fail(zipmessage::fileChanged(name));
    return {};
}

ZipStreamWriter::ZipStreamWriter(QIODevice *device)
    : m_d(std::make_unique<Private>(device))
{}

ZipStreamWriter::~ZipStreamWriter() = default;

Result<void> ZipStreamWriter::addBytes(const QString &name, QByteArrayView data,
                                       std::optional<quint32> crc)
{
    if (!m_d->m_error.isEmpty())
        return makeError(m_d->m_error);
    const bool ok = m_d->m_builder.beginEntry(name, crc ? *crc : crc32(data), quint64(data.size()))
                    && m_d->m_builder.write(data);
    return m_d->written(ok);
}

Result<void> ZipStreamWriter::addFile(const QString &name, const QString &path, qint64 size,
                                      quint32 crc)
{
    if (!m_d->m_error.isEmpty())
        return makeError(m_d->m_error);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return m_d->fail(zipmessage::fileUnreadable(name));
    if (file.size() != size)
        return m_d->fail(zipmessage::fileChanged(name));
    if (!m_d->m_builder.beginEntry(name, crc, quint64(size)))
        return m_d->fail(zipmessage::notWritten());
    return m_d->copyFile(name, file, size, crc);
}

Result<void> ZipStreamWriter::finish()
{
    if (!m_d->m_error.isEmpty())
        return makeError(m_d->m_error);
    if (!m_d->m_builder.finish())
        return m_d->fail(zipmessage::notWritten());
    m_d->m_digest = m_d->m_hash.result();
    return {};
}

QByteArray ZipStreamWriter::sha256() const
{
    return m_d->m_digest;
}

qint64 ZipStreamWriter::size() const
{
    return qint64(m_d->m_builder.offset());
}

} // namespace fb::app
