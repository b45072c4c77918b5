#include "storage/zip/inflate.h"

#include <QString>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

constexpr int kFastBits = 10;
constexpr int kMaxCodeLength = 15;
constexpr int kLitLenSymbols = 288;
constexpr int kMaxLitLenCodes = 286;
constexpr int kMaxDistanceCodes = 30;
constexpr int kEndOfBlock = 256;

// Base values and extra bits of the length symbols 257 to 285 and the distance symbols 0 to 29.
constexpr std::array<quint16, 29> kLengthBase
    = {3,  4,  5,  6,  7,  8,  9,  10, 11,  13,  15,  17,  19,  23, 27,
       31, 35, 43, 51, 59, 67, 83, 99, 115, 131, 163, 195, 227, 258};
constexpr std::array<quint8, 29> kLengthExtra
    = {0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3, 4, 4, 4, 4, 5, 5, 5, 5, 0};
constexpr std::array<quint16, 30> kDistanceBase
    = {1,   2,   3,   4,   5,   7,    9,    13,   17,   25,   33,   49,   65,    97,    129,
       193, 257, 385, 513, 769, 1025, 1537, 2049, 3073, 4097, 6145, 8193, 12289, 16385, 24577};
constexpr std::array<quint8, 30> kDistanceExtra
    = {0, 0, 0, 0, 1, 1, 2, 2,  3,  3,  4,  4,  5,  5,  6,
       6, 7, 7, 8, 8, 9, 9, 10, 10, 11, 11, 12, 12, 13, 13};

// The order in which a dynamic block header lists the lengths of the code length code.
constexpr std::array<quint8, 19> kCodeLengthOrder
    = {16, 17, 18, 0, 8, 7, 9, 6, 10, 5, 11, 4, 12, 3, 13, 2, 14, 1, 15};

// A canonical Huffman code. Codes of up to kFastBits bits decode with one look-up in `fast`;
// longer ones are found by walking the code lengths, which common data rarely needs.
struct HuffmanCode
{
    enum class Coverage { Complete, SingleCodeAllowed, PartialAllowed };

    // Entries are (code length << 9) | symbol; 0 marks a longer or unassigned code.
    std::array<quint16, 1 << kFastBits> fast{};
    std::array<quint16, kMaxCodeLength + 1> counts{};
    std::array<quint16, kLitLenSymbols> symbols{};

    bool build(const quint8 *lengths, int symbolCount, Coverage coverage);
};

bool HuffmanCode::build(const quint8 *lengths, int symbolCount, Coverage coverage)
{
    counts.fill(0);
    fast.fill(0);
    for (int s = 0; s < symbolCount; ++s)
        ++counts[lengths[s]];

    int left = 1;
    for (int len = 1; len <= kMaxCodeLength; ++len) {
        left = (left << 1) - counts[len];
        if (left < 0)
            return false; // over-subscribed
    }
    // An incomplete code would leave bit patterns without a symbol. The format allows it only
    // for a lone one-bit code (a block that needs a single distance, or none).
    const int used = symbolCount - counts[0];
    if (left > 0) {
        if (coverage == Coverage::Complete)
            return false;
        if (coverage == Coverage::SingleCodeAllowed && used != counts[1])
            return false;
    }

    std::array<int, kMaxCodeLength + 2> offsets{};
    for (int len = 1; len <= kMaxCodeLength; ++len)
        offsets[len + 1] = offsets[len] + counts[len];
    std::array<int, kMaxCodeLength + 1> nextCode{};
    int code = 0;
    for (int len = 1; len <= kMaxCodeLength; ++len) {
        code = (code + (len > 1 ? counts[len - 1] : 0)) << 1;
        nextCode[len] = code;
    }

    for (int s = 0; s < symbolCount; ++s) {
        const int len = lengths[s];
        if (len == 0)
            continue;
        symbols[offsets[len]++] = static_cast<quint16>(s);
        const int canonical = nextCode[len]++;
        if (len > kFastBits)
            continue;
        // Codes are sent most significant bit first while the stream is read least
        // significant bit first, so the table is indexed by the reversed code.
        int reversed = 0;
        for (int b = 0; b < len; ++b)
            reversed |= ((canonical >> b) & 1) << (len - 1 - b);
        const auto entry = static_cast<quint16>((len << 9) | s);
        for (int i = reversed; i < (1 << kFastBits); i += 1 << len)
            fast[i] = entry;
    }
    return true;
}

// Bits least significant first. Reading past the end yields zero bits and marks the input as
// overrun, which the decoder takes as the end of a truncated stream.
class BitReader
{
public:
    explicit BitReader(QByteArrayView data)
        : m_data(reinterpret_cast<const quint8 *>(data.data()))
        , m_size(data.size())
    {
    }

    bool isOverrun() const { return m_count < m_padding; }

    quint32 peek(int n)
    {
        if (m_count < n)
            refill();
        return static_cast<quint32>(m_bits & ((quint64(1) << n) - 1));
    }

    void skip(int n)
    {
        m_bits >>= n;
        m_count -= n;
    }

    quint32 take(int n)
    {
        const quint32 value = peek(n);
        skip(n);
        return value;
    }

    // Drops the bits left in the current byte and hands back the read position of the bytes
    // that follow, so a stored block can be copied straight from the input.
    qsizetype alignToByte()
    {
        skip(m_count & 7);
        return m_pos - (m_count > m_padding ? (m_count - m_padding) / 8 : 0);
    }

    void restartAt(qsizetype pos)
    {
        m_pos = pos;
        m_bits = 0;
        m_count = 0;
        m_padding = 0;
    }

    const quint8 *data() const { return m_data; }
    qsizetype size() const { return m_size; }

private:
    void refill()
    {
        while (m_count <= 56) {
            quint64 byte = 0;
            if (m_pos < m_size)
                byte = m_data[m_pos++];
            else
                m_padding += 8;
            m_bits |= byte << m_count;
            m_count += 8;
        }
    }

    const quint8 *m_data;
    qsizetype m_size;
    qsizetype m_pos = 0;
    quint64 m_bits = 0;
    int m_count = 0;
    int m_padding = 0;
};

const HuffmanCode &fixedLitLenCode()
{
    static const HuffmanCode code = [] {
        std::array<quint8, kLitLenSymbols> lengths{};
        std::fill(lengths.begin(), lengths.begin() + 144, quint8(8));
        std::fill(lengths.begin() + 144, lengths.begin() + 256, quint8(9));
        std::fill(lengths.begin() + 256, lengths.begin() + 280, quint8(7));
        std::fill(lengths.begin() + 280, lengths.end(), quint8(8));
        HuffmanCode c;
        c.build(lengths.data(), kLitLenSymbols, HuffmanCode::Coverage::PartialAllowed);
        return c;
    }();
    return code;
}

const HuffmanCode &fixedDistanceCode()
{
    static const HuffmanCode code = [] {
        std::array<quint8, kMaxDistanceCodes> lengths{};
        lengths.fill(5);
        HuffmanCode c;
        c.build(lengths.data(), kMaxDistanceCodes, HuffmanCode::Coverage::PartialAllowed);
        return c;
    }();
    return code;
}

class Inflater
{
public:
    Inflater(QByteArrayView input, qsizetype limit)
        : m_in(input)
        , m_limit(limit)
        , m_ceiling(limit > std::numeric_limits<qsizetype>::max() - kInflateBlockOverrun
                        ? std::numeric_limits<qsizetype>::max()
                        : limit + kInflateBlockOverrun)
    {
    }

    Result<QByteArray> run();

private:
    enum class BlockEnd { Finished, OutputFull, Failed };

    BlockEnd storedBlock();
    BlockEnd dynamicBlock();
    BlockEnd huffmanBlock(const HuffmanCode &litLen, const HuffmanCode &distance);
    int decode(const HuffmanCode &code);
    int decodeLong(const HuffmanCode &code);
    void reserve(qsizetype extra);

    BlockEnd fail(QString message)
    {
        m_error = std::move(message);
        return BlockEnd::Failed;
    }

    BitReader m_in;
    qsizetype m_limit;
    qsizetype m_ceiling;
    QByteArray m_out;
    qsizetype m_size = 0;
    QString m_error;
    HuffmanCode m_litLen;
    HuffmanCode m_distance;
    HuffmanCode m_codeLengths;
};

Result<QByteArray> Inflater::run()
{
    bool isFinal = false;
    while (!isFinal && m_size < m_limit) {
        isFinal = m_in.take(1) != 0;
        const quint32 type = m_in.take(2);
        if (m_in.isOverrun())
            return makeError(u"The deflate stream ends before its final block."_s);
        BlockEnd end = BlockEnd::Failed;
        switch (type) {
        case 0:
            end = storedBlock();
            break;
        case 1:
            end = huffmanBlock(fixedLitLenCode(), fixedDistanceCode());
            break;
        case 2:
            end = dynamicBlock();
            break;
        default:
            fail(u"The deflate stream uses the reserved block type."_s);
            break;
        }
        if (end == BlockEnd::Failed)
            return makeError(m_error);
        if (end == BlockEnd::OutputFull)
            break;
    }
    m_out.resize(m_size);
    // Growth by doubling can leave up to half the buffer unused; the result may be kept long.
    if (m_out.capacity() - m_size > m_size / 4)
        m_out.squeeze();
    return m_out;
}

Inflater::BlockEnd Inflater::storedBlock()
{
    m_in.alignToByte();
    const quint32 length = m_in.take(16);
    const quint32 complement = m_in.take(16);
    if (m_in.isOverrun())
        return fail(u"The deflate stream ends inside a stored block header."_s);
    if ((length ^ 0xFFFF) != complement)
        return fail(u"A stored block's length disagrees with its complement."_s);
    const qsizetype pos = m_in.alignToByte();
    if (m_in.size() - pos < qsizetype(length))
        return fail(u"The deflate stream ends inside a stored block."_s);
    if (m_size + qsizetype(length) > m_ceiling)
        return BlockEnd::OutputFull;
    reserve(length);
    if (length > 0)
        std::memcpy(m_out.data() + m_size, m_in.data() + pos, length);
    m_size += length;
    m_in.restartAt(pos + length);
    return BlockEnd::Finished;
}

Inflater::BlockEnd Inflater::dynamicBlock()
{
    const int litLenCount = int(m_in.take(5)) + 257;
    const int distanceCount = int(m_in.take(5)) + 1;
    const int codeLengthCount = int(m_in.take(4)) + 4;
    if (litLenCount > kMaxLitLenCodes || distanceCount > kMaxDistanceCodes)
        return fail(u"A dynamic block declares too many codes."_s);

    std::array<quint8, 19> codeLengthLengths{};
    for (int i = 0; i < codeLengthCount; ++i)
        codeLengthLengths[kCodeLengthOrder[i]] = static_cast<quint8>(m_in.take(3));
    if (m_in.isOverrun())
        return fail(u"The deflate stream ends inside a dynamic block header."_s);
    if (!m_codeLengths.build(codeLengthLengths.data(), 19, HuffmanCode::Coverage::Complete))
        return fail(u"A dynamic block has an invalid code length code."_s);

    std::array<quint8, kMaxLitLenCodes + kMaxDistanceCodes> lengths{};
    const int total = litLenCount + distanceCount;
    int n = 0;
    while (n < total) {
        const int symbol = decode(m_codeLengths);
        if (symbol < 0)
            return fail(u"A dynamic block has an invalid code length."_s);
        if (symbol < 16) {
            lengths[n++] = static_cast<quint8>(symbol);
            continue;
        }
        quint8 value = 0;
        int repeat = 0;
        if (symbol == 16) {
            if (n == 0)
                return fail(u"A dynamic block repeats a code length before giving one."_s);
            value = lengths[n - 1];
            repeat = 3 + int(m_in.take(2));
        } else if (symbol == 17) {
            repeat = 3 + int(m_in.take(3));
        } else {
            repeat = 11 + int(m_in.take(7));
        }
        if (n + repeat > total)
            return fail(u"A dynamic block repeats code lengths past the end of its codes."_s);
        std::fill(lengths.begin() + n, lengths.begin() + n + repeat, value);
        n += repeat;
    }
    if (m_in.isOverrun())
        return fail(u"The deflate stream ends inside a dynamic block header."_s);
    if (lengths[kEndOfBlock] == 0)
        return fail(u"A dynamic block has no end-of-block code."_s);

    const auto coverage = HuffmanCode::Coverage::SingleCodeAllowed;
    if (!m_litLen.build(lengths.data(), litLenCount, coverage)
        || !m_distance.build(lengths.data() + litLenCount, distanceCount, coverage)) {
        return fail(u"A dynamic block has an invalid Huffman code."_s);
    }
    return huffmanBlock(m_litLen, m_distance);
}

Inflater::BlockEnd Inflater::huffmanBlock(const HuffmanCode &litLen, const HuffmanCode &distance)
{
    for (;;) {
        const int symbol = decode(litLen);
        if (symbol < 0)
            return fail(u"The deflate stream holds an invalid literal or length code."_s);
        if (symbol < 256) {
            if (m_in.isOverrun())
                return fail(u"The deflate stream ends inside a block."_s);
            if (m_size >= m_ceiling)
                return BlockEnd::OutputFull;
            reserve(1);
            m_out.data()[m_size++] = static_cast<char>(symbol);
            continue;
        }
        if (symbol == kEndOfBlock)
            break;

        const int lengthIndex = symbol - 257;
        if (lengthIndex >= int(kLengthBase.size()))
            return fail(u"The deflate stream holds an invalid length symbol."_s);
        const qsizetype length = kLengthBase[lengthIndex] + m_in.take(kLengthExtra[lengthIndex]);
        const int distanceSymbol = decode(distance);
        if (distanceSymbol < 0 || distanceSymbol >= int(kDistanceBase.size()))
            return fail(u"The deflate stream holds an invalid distance code."_s);
        const qsizetype dist
            = kDistanceBase[distanceSymbol] + m_in.take(kDistanceExtra[distanceSymbol]);
        if (m_in.isOverrun())
            return fail(u"The deflate stream ends inside a block."_s);
        if (dist > m_size)
            return fail(u"The deflate stream refers back past the start of its output."_s);
        if (m_size + length > m_ceiling)
            return BlockEnd::OutputFull;

        reserve(length);
        char *to = m_out.data() + m_size;
        const char *from = to - dist;
        if (dist >= length) {
            std::memcpy(to, from, size_t(length));
        } else {
            // An overlapping copy repeats the last `dist` bytes, so it must go byte by byte.
            for (qsizetype i = 0; i < length; ++i)
                to[i] = from[i];
        }
        m_size += length;
    }
    if (m_in.isOverrun())
        return fail(u"The deflate stream ends inside a block."_s);
    return BlockEnd::Finished;
}

int Inflater::decode(const HuffmanCode &code)
{
    const quint16 entry = code.fast[m_in.peek(kFastBits)];
    if (entry == 0)
        return decodeLong(code);
    m_in.skip(entry >> 9);
    return entry & 0x1FF;
}

int Inflater::decodeLong(const HuffmanCode &code)
{
    // Walks the canonical code one length at a time: `first` is the first code of the current
    // length and `index` the position of its first symbol.
    quint32 bits = m_in.peek(kMaxCodeLength);
    int value = 0;
    int first = 0;
    int index = 0;
    for (int len = 1; len <= kMaxCodeLength; ++len) {
        value |= int(bits & 1);
        bits >>= 1;
        const int count = code.counts[len];
        if (value < first + count) {
            m_in.skip(len);
            return code.symbols[index + value - first];
        }
        index += count;
        first = (first + count) << 1;
        value <<= 1;
    }
    return -1;
}

void Inflater::reserve(qsizetype extra)
{
    const qsizetype needed = m_size + extra;
    if (needed <= m_out.size())
        return;
    const qsizetype grown = std::max(needed, std::max<qsizetype>(m_out.size() * 2, 4096));
    m_out.resize(std::min(grown, m_ceiling));
}

} // namespace

Result<QByteArray> inflate(QByteArrayView deflated, qsizetype outputLimit)
{
    Inflater inflater(deflated, outputLimit);
    return inflater.run();
}

} // namespace fb::app
