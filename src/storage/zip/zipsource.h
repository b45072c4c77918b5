#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <optional>

class QIODevice;

namespace fb::app {

// The bytes of an archive: held whole in memory, or read on demand from a random-access device
// (an open file), so that a large archive never has to be in memory at once.
class ZipSource
{
public:
    explicit ZipSource(QByteArrayView bytes);
    // The device must be open for reading and random-access; it is not taken over.
    explicit ZipSource(QIODevice *device);

    qint64 size() const { return m_size; }

    // The `length` bytes at `pos`, or nothing when they lie outside the archive or cannot be
    // read. The view stays valid until the next read from this source.
    std::optional<QByteArrayView> read(qint64 pos, qint64 length);

    // Whether a read of bytes inside the archive failed: the device reported an error.
    bool hasReadError() const { return m_readError; }

private:
    QByteArrayView m_bytes;
    QIODevice *m_device = nullptr;
    qint64 m_size = 0;
    QByteArray m_buffer;
    bool m_readError = false;
};

} // namespace fb::app
