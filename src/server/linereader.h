#pragma once

#include <QByteArray>

#include <optional>

namespace fb::app {

// The longest request line the server reads: 10 MiB, the line feed not counted. The official
// MCP clients send no longer messages.
inline constexpr qsizetype kMaxLineLength = 10 * 1024 * 1024;

// How much one read from the descriptor asks for.
inline constexpr qsizetype kLineReaderChunkSize = 64 * 1024;

// One line of input without its line feed (a carriage return before it stays), or the mark of
// a line that ran past the length cap and was skipped without being stored.
struct InputLine
{
    QByteArray bytes;
    bool isTooLong = false;
};

// Splits a file descriptor into lines, reading fixed chunks, so that however long a line runs
// the reader never holds more than the cap plus one chunk.
class LineReader
{
public:
    explicit LineReader(int fileDescriptor, qsizetype maxLineLength = kMaxLineLength,
                        qsizetype chunkSize = kLineReaderChunkSize);

    // The next line; a last line without a line feed counts too. Nothing once the input has
    // ended or a read has failed; a line cut short by a failed read is dropped, since its
    // missing rest could change its meaning.
    std::optional<InputLine> next();

private:
    // Reads the next chunk into the buffer; false at the end of input or on a read error.
    bool fill();
    void append(QByteArray &line, const char *bytes, qsizetype count) const;

    int m_fileDescriptor;
    qsizetype m_maxLineLength;
    QByteArray m_chunk;
    qsizetype m_begin = 0;
    qsizetype m_end = 0;
    bool m_isAtEnd = false;
    bool m_hasFailed = false;
};

} // namespace fb::app
