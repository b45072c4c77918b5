#include "server/linereader.h"

#include "support/printers.h"

#include <QByteArrayList>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

using fb::app::InputLine;
using fb::app::LineReader;

namespace {

// Every line the reader gives for the bytes, a skipped over-long line written as "<too long>".
// The bytes go through a real pipe, closed behind them, so the end of input is the pipe's.
QByteArrayList readAll(const QByteArray &input, qsizetype maxLineLength, qsizetype chunkSize)
{
    int ends[2];
    if (::pipe(ends) != 0)
        return {"<no pipe>"};
    const bool written = ::write(ends[1], input.constData(), size_t(input.size())) == input.size();
    ::close(ends[1]);
    QByteArrayList lines;
    LineReader reader(ends[0], maxLineLength, chunkSize);
    while (const std::optional<InputLine> line = reader.next())
        lines.append(line->isTooLong ? QByteArray("<too long>") : line->bytes);
    ::close(ends[0]);
    if (!written)
        return {"<not written>"};
    return lines;
}

TEST(LineReader, SplitsLinesAtEveryChunkSizeAndSkipsThoseOverTheCap)
{
    const struct
    {
        const char *name;
        QByteArray input;
        QByteArrayList lines;
    } cases[] = {
        {"no input", "", {}},
        {"one empty line", "\n", {""}},
        {"empty lines between lines", "ab\n\n\ncd\n", {"ab", "", "", "cd"}},
        {"last line without a line feed", "ab\ncd", {"ab", "cd"}},
        {"carriage return stays in the line", "ab\r\ncd\r", {"ab\r", "cd\r"}},
        {"line exactly at the cap", "12345678\nx\n", {"12345678", "x"}},
        {"line one byte over the cap", "123456789\nx\n", {"<too long>", "x"}},
        {"line far over the cap",
         QByteArray(100, 'y') + "\nx\n" + QByteArray(9, 'z') + "\n",
         {"<too long>", "x", "<too long>"}},
        {"over-long last line without a line feed", "x\n123456789", {"x", "<too long>"}},
        {"over-long line between short ones",
         "a\n" + QByteArray(20, 'q') + "\r\nb",
         {"a", "<too long>", "b"}},
    };
    for (const auto &c : cases) {
        for (qsizetype chunkSize = 1; chunkSize <= 12; ++chunkSize) {
            SCOPED_TRACE(std::string(c.name) + ", chunk " + std::to_string(chunkSize));
            EXPECT_EQ(readAll(c.input, 8, chunkSize), c.lines);
        }
    }
}

TEST(LineReader, EndsAtAReadError)
{
    // Reading a write-only descriptor fails at once.
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    LineReader reader(ends[1]);
    EXPECT_FALSE(reader.next().has_value());
    EXPECT_FALSE(reader.next().has_value());
    ::close(ends[0]);
    ::close(ends[1]);
}

} // namespace
