#include "storage/zip/crc32.h"
#include "storage/zip/inflate.h"
#include "storage/zip/zipreader.h"
#include "storage/zip/zipwriter.h"
#include "support/printers.h"

#include <QFile>
#include <QRandomGenerator>
#include <QtEndian>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using fb::app::inflate;
using fb::app::kInflateBlockOverrun;
using fb::app::kInflateOutputLimit;

namespace {

QByteArray readTestFile(const char *name)
{
    QFile file(QStringLiteral(FB_TEST_DATA_DIR "/zip/") + QString::fromLatin1(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    return file.readAll();
}

// Writes a deflate stream bit by bit: header fields least significant bit first, Huffman
// codes most significant bit first, as the format sends them.
class BitWriter
{
public:
    BitWriter &bits(quint32 value, int count)
    {
        for (int i = 0; i < count; ++i)
            put((value >> i) & 1);
        return *this;
    }

    BitWriter &code(quint32 value, int length)
    {
        for (int i = length - 1; i >= 0; --i)
            put((value >> i) & 1);
        return *this;
    }

    BitWriter &fixed(int symbol)
    {
        if (symbol < 144)
            return code(0x30 + symbol, 8);
        if (symbol < 256)
            return code(0x190 + symbol - 144, 9);
        if (symbol < 280)
            return code(symbol - 256, 7);
        return code(0xC0 + symbol - 280, 8);
    }

    QByteArray bytes() const { return m_bytes; }

private:
    void put(quint32 bit)
    {
        if (m_bitCount % 8 == 0)
            m_bytes.append('\0');
        m_bytes.back() = char(m_bytes.back() | (bit << (m_bitCount++ % 8)));
    }

    QByteArray m_bytes;
    int m_bitCount = 0;
};

constexpr quint32 kFinalFixedBlock = 0b011;

// Fixed blocks that each repeat a zero byte 258 * runsPerBlock times (the first block also
// holds the zero literal that the runs copy).
QByteArray zeroBomb(int blocks, int runsPerBlock)
{
    BitWriter w;
    for (int b = 0; b < blocks; ++b) {
        w.bits(b == blocks - 1 ? kFinalFixedBlock : 0b010, 3);
        if (b == 0)
            w.fixed(0);
        for (int r = 0; r < runsPerBlock; ++r)
            w.fixed(285).code(0, 5); // length 258, distance 1
        w.fixed(256);
    }
    return w.bytes();
}

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

TEST(Inflate, ExtractionCutsADeflateBombShortNearSixtyFourMebibytes)
{
    // About 100 MiB of zeros in blocks of 258,000 bytes, stored in an archive as method 8.
    QByteArray archive = fb::app::writeZip({{u"bomb.bin"_s, zeroBomb(400, 1000)}});
    const qsizetype centralHeader
        = qFromLittleEndian<quint32>(archive.constData() + archive.size() - 6);
    qToLittleEndian<quint16>(fb::app::kZipDeflated, archive.data() + 8);
    qToLittleEndian<quint16>(fb::app::kZipDeflated, archive.data() + centralHeader + 10);

    const auto data = fb::app::extractZipEntry(archive, u"bomb.bin");
    ASSERT_TRUE(data) << data.error().toStdString();
    EXPECT_GE(data->size(), kInflateOutputLimit);
    EXPECT_LT(data->size(), kInflateOutputLimit + 258000);
    EXPECT_EQ(data->size() % 258000, 1); // whole blocks after the first literal
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
