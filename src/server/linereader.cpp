#include "server/linereader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <unistd.h>

namespace fb::app {

LineReader::LineReader(int fileDescriptor, qsizetype maxLineLength, qsizetype chunkSize)
    : m_fileDescriptor(fileDescriptor)
    , m_maxLineLength(maxLineLength)
    , m_chunk(std::max<qsizetype>(chunkSize, 1), Qt::Uninitialized)
{}

std::optional<InputLine> LineReader::next()
{
    InputLine line;
    bool hasBytes = false;
    for (;;) {
        if (m_begin == m_end && !fill()) {
            if (!hasBytes || m_hasFailed)
                return std::nullopt;
            return line;
        }
        hasBytes = true;
        const char *start = m_chunk.constData() + m_begin;
        const qsizetype available = m_end - m_begin;
        const auto *feed = static_cast<const char *>(std::memchr(start, '\n', size_t(available)));
        const qsizetype count = feed ? feed - start : available;
        if (!line.isTooLong) {
            if (line.bytes.size() + count > m_maxLineLength) {
                // The part read so far is released at once: the rest of the line is only
                // looked through for its end.
                line.isTooLong = true;
                line.bytes = QByteArray();
            } else {
                append(line.bytes, start, count);
            }
        }
        m_begin += feed ? count + 1 : count;
        if (feed)
            return line;
    }
}

bool LineReader::fill()
{
    m_begin = 0;
    m_end = 0;
    while (!m_isAtEnd) {
        const ssize_t count = ::read(m_fileDescriptor, m_chunk.data(), size_t(m_chunk.size()));
        if (count > 0) {
            m_end = count;
            return true;
        }
        if (count < 0 && errno == EINTR)
            continue;
        m_isAtEnd = true;
        m_hasFailed = count < 0;
    }
    return false;
}

// The line grows geometrically like any byte array, but never reserves past the cap, so a
// line of the greatest allowed length costs the cap and not twice as much.
void LineReader::append(QByteArray &line, const char *bytes, qsizetype count) const
{
    const qsizetype needed = line.size() + count;
    if (needed > line.capacity())
        line.reserve(std::min(m_maxLineLength, std::max(needed, 2 * line.capacity())));
    line.append(bytes, count);
}

} // namespace fb::app
