#include "storage/zip/zipsource.h"

#include <QIODevice>

namespace fb::app {

namespace {

constexpr qsizetype kKeptCapacity = 1048576;

} // namespace

ZipSource::ZipSource(QByteArrayView bytes)
    : m_bytes(bytes)
    , m_size(bytes.size())
{}

ZipSource::ZipSource(QIODevice *device)
    : m_device(device)
    , m_size(device->size())
{}

std::optional<QByteArrayView> ZipSource::read(qint64 pos, qint64 length)
{
    if (pos < 0 || length < 0 || pos > m_size || length > m_size - pos)
        return std::nullopt;
    if (!m_device)
        return m_bytes.sliced(pos, length);

    // A large read (a directory of many entries) does not keep its memory for the small reads
    // that follow.
    if (m_buffer.capacity() > kKeptCapacity && length < m_buffer.capacity() / 2)
        m_buffer = QByteArray();
    m_buffer.resize(length);
    qint64 done = 0;
    if (m_device->seek(pos)) {
        while (done < length) {
            const qint64 got = m_device->read(m_buffer.data() + done, length - done);
            if (got <= 0)
                break;
            done += got;
        }
    }
    if (done < length) {
        m_readError = true;
        return std::nullopt;
    }
    return QByteArrayView(m_buffer);
}

} // namespace fb::app
