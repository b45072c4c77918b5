#pragma once

// Builders of deflate streams and archives for the archive tests.

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QtEndian>

#include <gtest/gtest.h>

namespace fb::ziptest {

inline QByteArray readTestFile(const char *name)
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
        m_pending |= quint64(value & ((quint64(1) << count) - 1)) << m_pendingBits;
        m_pendingBits += count;
        while (m_pendingBits >= 8) {
            m_bytes.append(char(m_pending & 0xFF));
            m_pending >>= 8;
            m_pendingBits -= 8;
        }
        return *this;
    }

    BitWriter &code(quint32 value, int length)
    {
        quint32 reversed = 0;
        for (int i = 0; i < length; ++i)
            reversed |= ((value >> i) & 1) << (length - 1 - i);
        return bits(reversed, length);
    }

    // A symbol of the fixed literal/length code.
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

    // Pads to a whole byte, as a stored block's header does.
    BitWriter &alignToByte()
    {
        if (m_pendingBits > 0)
            bits(0, 8 - m_pendingBits);
        return *this;
    }

    BitWriter &bytes(const QByteArray &data)
    {
        alignToByte();
        m_bytes.append(data);
        return *this;
    }

    QByteArray bytes() const { return m_pendingBits > 0 ? m_bytes + char(m_pending) : m_bytes; }

private:
    QByteArray m_bytes;
    quint64 m_pending = 0;
    int m_pendingBits = 0;
};

inline constexpr quint32 kFinalFixedBlock = 0b011;

// Fixed blocks that each repeat a zero byte 258 * runsPerBlock times (the first block also
// holds the zero literal that the runs copy): 1 + 258 * blocks * runsPerBlock bytes of zeros.
inline QByteArray zeroBomb(int blocks, int runsPerBlock)
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

// What the headers of one entry declare, for rewriting an archive the writer made.
struct Declared
{
    quint16 method;
    quint32 crc;
    quint32 uncompressedSize;
};

// Rewrites the method, CRC-32 and uncompressed size in both headers of the entry at `index`
// of a plain (not ZIP64) archive, so stored bytes can pose as a deflated entry or as damaged.
inline void declare(QByteArray &archive, int index, const Declared &declared)
{
    qsizetype central = qFromLittleEndian<quint32>(archive.constData() + archive.size() - 6);
    for (int i = 0; i < index; ++i) {
        const char *header = archive.constData() + central;
        central += 46 + qFromLittleEndian<quint16>(header + 28)
                   + qFromLittleEndian<quint16>(header + 30)
                   + qFromLittleEndian<quint16>(header + 32);
    }
    const qsizetype local = qFromLittleEndian<quint32>(archive.constData() + central + 42);
    for (const qsizetype header : {local + 8, central + 10})
        qToLittleEndian<quint16>(declared.method, archive.data() + header);
    for (const qsizetype header : {local + 14, central + 16})
        qToLittleEndian<quint32>(declared.crc, archive.data() + header);
    for (const qsizetype header : {local + 22, central + 24})
        qToLittleEndian<quint32>(declared.uncompressedSize, archive.data() + header);
}

} // namespace fb::ziptest
