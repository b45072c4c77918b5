#include "storage/zip/inflate.h"

#include "storage/zip/crc32.h"
#include "support/printers.h"
#include "unit/storage/zip/ziptestutil.h"

#include <QRandomGenerator>

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;
using fb::app::inflate;
using fb::app::kInflateBlockOverrun;
using fb::ziptest::BitWriter;
using fb::ziptest::kFinalFixedBlock;
using fb::ziptest::readTestFile;
using fb::ziptest::zeroBomb;

namespace {

// A final dynamic block header with one distance code whose code length code lists the
// lengths of symbols 16, 17, 18 and 0, giving one bit to each symbol in `oneBitSymbols`.
BitWriter dynamicHeader(int litLenCount, const QList<int> &oneBitSymbols)
{
    BitWriter w;
    w.bits(0b101, 3).bits(litLenCount - 257, 5).bits(0, 5).bits(0, 4);
    for (int symbol : {16, 17, 18, 0})
        w.bits(oneBitSymbols.contains(symbol) ? 1 : 0, 3);
    return w;
}

TEST(Inflate, DecodesStoredFixedAndDynamicBlocks)
{
    const QByteArray text = readTestFile("text.txt");
    struct Case
    {
        const char *name;
        QByteArray deflated;
        QByteArray expected;
    };
    const Case cases[] = {
        {"stored block", QByteArray::fromHex("010500faff68656c6c6f"), "hello"},
        {"empty stored block", QByteArray::fromHex("010000ffff"), ""},
        {"empty fixed block", QByteArray::fromHex("0300"), ""},
        {"fixed literal", QByteArray::fromHex("4b0400"), "a"},
        {"fixed literals", QByteArray::fromHex("4b4c4a0600"), "abc"},
        {"fixed overlapping match", QByteArray::fromHex("4b4c4a4e444500"), "abcabcabcabcabcabc"},
        {"stored then fixed", QByteArray::fromHex("000300fcff6162634b4c4a0600"), "abcabc"},
        {"dynamic block", readTestFile("text.deflate"), text},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        const auto result = inflate(c.deflated);
        ASSERT_TRUE(result) << result.error().toStdString();
        EXPECT_EQ(*result, c.expected);
    }
}

TEST(Inflate, DecodesLongCodesAndEveryLengthAndDistance)
{
    struct Case
    {
        const char *file;
        qsizetype size;
        quint32 crc;
    };
    const Case cases[] = {
        // Skewed bytes whose rare symbols need codes longer than ten bits, in four dynamic
        // blocks with an empty stored block after each of the first three.
        {"skewed.deflate", 40000, 0x53393791},
        // Copies of every length from 3 to 258 at distances from every distance code.
        {"matches.deflate", 101352, 0xB63F4E5D},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.file);
        const auto result = inflate(readTestFile(c.file));
        ASSERT_TRUE(result) << result.error().toStdString();
        EXPECT_EQ(result->size(), c.size);
        EXPECT_EQ(fb::app::crc32(*result), c.crc);
    }
}

TEST(Inflate, FailsOnCorruptOrTruncatedStreams)
{
    struct Case
    {
        const char *name;
        QByteArray deflated;
        QString error;
    };
    const Case cases[] = {
        {"empty input", {}, u"The deflate stream ends before its final block."_s},
        {"no final block", QByteArray::fromHex("000000ffff"),
         u"The deflate stream ends before its final block."_s},
        {"reserved block type", QByteArray::fromHex("07"),
         u"The deflate stream uses the reserved block type."_s},
        {"stored length mismatch", QByteArray::fromHex("0105000000"),
         u"A stored block's length disagrees with its complement."_s},
        {"stored block cut short", QByteArray::fromHex("010500faff6865"),
         u"The deflate stream ends inside a stored block."_s},
        {"fixed block cut short", QByteArray::fromHex("4b04"),
         u"The deflate stream ends inside a block."_s},
        {"distance past the start",
         BitWriter().bits(kFinalFixedBlock, 3).fixed('x').fixed(257).code(1, 5).fixed(256).bytes(),
         u"The deflate stream refers back past the start of its output."_s},
        {"length symbol 286", BitWriter().bits(kFinalFixedBlock, 3).fixed('x').fixed(286).bytes(),
         u"The deflate stream holds an invalid length symbol."_s},
        {"distance symbol 30",
         BitWriter().bits(kFinalFixedBlock, 3).fixed('x').fixed(257).code(30, 5).bytes(),
         u"The deflate stream holds an invalid distance code."_s},
        {"too many length codes", dynamicHeader(287, {16, 17}).bytes(),
         u"A dynamic block declares too many codes."_s},
        {"incomplete code length code", dynamicHeader(257, {16}).bytes(),
         u"A dynamic block has an invalid code length code."_s},
        {"over-subscribed code length code", dynamicHeader(257, {16, 17, 18}).bytes(),
         u"A dynamic block has an invalid code length code."_s},
        {"repeat before any length", dynamicHeader(257, {16, 17}).code(0, 1).bytes(),
         u"A dynamic block repeats a code length before giving one."_s},
        {"repeat past the end", // symbol 18 twice: 276 zero lengths for 258 codes
         dynamicHeader(257, {17, 18}).code(1, 1).bits(127, 7).code(1, 1).bits(127, 7).bytes(),
         u"A dynamic block repeats code lengths past the end of its codes."_s},
        {"no end-of-block code", // symbol 18 twice: 138 and 120 zero lengths
         dynamicHeader(257, {17, 18}).code(1, 1).bits(127, 7).code(1, 1).bits(109, 7).bytes(),
         u"A dynamic block has no end-of-block code."_s},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        const auto result = inflate(c.deflated);
        ASSERT_FALSE(result);
        EXPECT_EQ(result.error(), c.error);
    }
}

TEST(Inflate, CutsOffASingleBlockThatRunsFarPastTheLimit)
{
    // One block of about 100 MiB of zeros.
    const qsizetype limit = 1024;
    const auto result = inflate(zeroBomb(1, 400000), limit);
    ASSERT_TRUE(result);
    EXPECT_GT(result->size(), limit);
    EXPECT_LE(result->size(), limit + kInflateBlockOverrun);
}

// Hands the input over in pieces of `inputPiece` bytes and refuses output past `refuseAfter`.
class PiecewiseChannel final : public fb::app::InflateChannel
{
public:
    PiecewiseChannel(QByteArrayView input, qsizetype inputPiece, qint64 refuseAfter)
        : m_input(input)
        , m_piece(inputPiece)
        , m_refuseAfter(refuseAfter)
    {}

    QByteArrayView nextInput() override
    {
        const QByteArrayView piece = m_input.first(std::min(m_piece, m_input.size()));
        m_input = m_input.sliced(piece.size());
        return piece;
    }

    bool takeOutput(QByteArrayView piece) override
    {
        if (m_output.size() + piece.size() > m_refuseAfter)
            return false;
        m_output.append(piece);
        return true;
    }

    QByteArray m_output;

private:
    QByteArrayView m_input;
    qsizetype m_piece;
    qint64 m_refuseAfter;
};

TEST(InflateStream, DecodesTheSameWhateverPiecesTheInputArrivesIn)
{
    // Stored blocks longer than the decoder's buffer, and copies that reach back a whole window
    // across the points where the buffer is handed on. The expected output is built alongside.
    const QByteArray pattern = readTestFile("text.txt").repeated(10).left(32768);
    QByteArray expected = pattern.repeated(2).left(65535);
    BitWriter w;
    w.bits(0b000, 3).alignToByte().bits(65535, 16).bits(0, 16).bytes(expected);
    w.bits(0b010, 3);
    for (int i = 0; i < 5000; ++i) {
        w.fixed(285).code(29, 5).bits(8191, 13); // length 258, distance 32768
        expected.append(expected.sliced(expected.size() - 32768, 258));
    }
    w.fixed(256);
    const QByteArray last = pattern.repeated(2).left(40000);
    w.bits(0b001, 3).alignToByte().bits(40000, 16).bits(40000 ^ 0xFFFF, 16).bytes(last);
    expected.append(last);

    struct Case
    {
        const char *name;
        QByteArray deflated;
        QByteArray expected; // empty for the files, which other tests check
    };
    const Case cases[] = {
        {"dynamic blocks", readTestFile("text.deflate"), {}},
        {"long codes", readTestFile("skewed.deflate"), {}},
        {"every length and distance", readTestFile("matches.deflate"), {}},
        {"long stored blocks and far copies", w.bytes(), expected},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        const auto whole = inflate(c.deflated);
        ASSERT_TRUE(whole) << whole.error().toStdString();
        if (!c.expected.isEmpty()) {
            EXPECT_TRUE(*whole == c.expected);
        }
        for (const qsizetype piece : {1, 7, 8, 4096}) {
            SCOPED_TRACE(piece);
            PiecewiseChannel channel(c.deflated, piece, std::numeric_limits<qint64>::max());
            const fb::app::InflateOutcome outcome = fb::app::inflateStream(channel);
            EXPECT_EQ(outcome.end, fb::app::InflateEnd::Complete) << outcome.error.toStdString();
            EXPECT_EQ(outcome.outputSize, whole->size());
            EXPECT_TRUE(channel.m_output == *whole);
        }
    }
}

TEST(InflateStream, StopsAtTheOutputLimitOrWhenTheOutputIsRefused)
{
    const QByteArray bomb = zeroBomb(40, 1000); // 10,320,001 zeros
    struct Case
    {
        const char *name;
        qint64 maxOutput;
        qint64 refuseAfter;
        fb::app::InflateEnd end;
        qint64 outputSize;
    };
    const qint64 unlimited = std::numeric_limits<qint64>::max();
    const Case cases[] = {
        {"exactly the output", 10320001, unlimited, fb::app::InflateEnd::Complete, 10320001},
        {"one byte less allowed", 10320000, unlimited, fb::app::InflateEnd::OutputFull, 10319743},
        {"a small limit", 1000, unlimited, fb::app::InflateEnd::OutputFull, 775},
        {"output refused", unlimited, 1 << 20, fb::app::InflateEnd::Stopped, 1 << 20},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        PiecewiseChannel channel(bomb, 4096, c.refuseAfter);
        fb::app::InflateLimits limits;
        limits.maxOutput = c.maxOutput;
        const fb::app::InflateOutcome outcome = fb::app::inflateStream(channel, limits);
        EXPECT_EQ(outcome.end, c.end);
        EXPECT_LE(channel.m_output.size(), c.outputSize);
        if (c.end != fb::app::InflateEnd::Stopped) {
            EXPECT_EQ(outcome.outputSize, c.outputSize);
            EXPECT_EQ(channel.m_output.size(), c.outputSize);
        }
        EXPECT_EQ(channel.m_output.count('\0'), channel.m_output.size());
    }
}

TEST(Inflate, SurvivesHostileInput)
{
    const QByteArray valid = readTestFile("text.deflate");
    const qsizetype limit = 1 << 20;
    QRandomGenerator random(20240611);
    for (int i = 0; i < 4000; ++i) {
        QByteArray input;
        if (i % 2 == 0) {
            input.resize(random.bounded(400));
            for (char &byte : input)
                byte = char(random.bounded(256));
        } else {
            input = valid;
            for (int flips = 1 + random.bounded(4); flips > 0; --flips)
                input[random.bounded(input.size())] = char(random.bounded(256));
        }
        const auto result = inflate(input, limit);
        if (result) {
            ASSERT_LE(result->size(), limit + kInflateBlockOverrun) << "input " << i;
        }
    }
}

} // namespace
