#include "storage/zip/inflate.h"

#include <QString>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <utility>

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
constexpr std::array<quint16, 29> kLengthBase = {3,  4,  5,  6,   7,   8,   9,   10,  11, 13,
                                                 15, 17, 19, 23,  27,  31,  35,  43,  51, 59,
                                                 67, 83, 99, 115, 131, 163, 195, 227, 258};
constexpr std::array<quint8, 29> kLengthExtra = {0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2,
                                                 2, 3, 3, 3, 3, 4, 4, 4, 4, 5, 5, 5, 5, 0};
constexpr std::array<quint16, 30> kDistanceBase = {1,    2,    3,    4,     5,     7,    9,    13,
                                                   17,   25,   33,   49,    65,    97,   129,  193,
                                                   257,  385,  513,  769,   1025,  1537, 2049, 3073,
                                                   4097, 6145, 8193, 12289, 16385, 24577};
constexpr std::array<quint8, 30> kDistanceExtra = {0, 0, 0,  0,  1,  1,  2,  2,  3,  3,
                                                   4, 4, 5,  5,  6,  6,  7,  7,  8,  8,
                                                   9, 9, 10, 10, 11, 11, 12, 12, 13, 13};

// The order in which a dynamic block header lists the lengths of the code length code.
constexpr std::array<quint8, 19> kCodeLengthOrder = {16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                                     11, 4,  12, 3, 13, 2, 14, 1, 15};

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

// Bits least significant first, from input that arrives in pieces. Reading past the end of the
// input yields zero bits and marks the input as overrun, which the decoder takes as the end of
// a truncated stream.
class BitReader
{
public:
    explicit BitReader(InflateChannel &channel)
        : m_channel(channel)
    {}

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

    void alignToByte() { skip(m_count & 7); }

    // After alignToByte(), copies up to `length` bytes of input as they are (the contents of a
    // stored block) and returns how many there were before the input ended.
    qsizetype readBytes(char *to, qsizetype length)
    {
        qsizetype done = 0;
        // Whole bytes already taken into the bit buffer come first.
        while (done < length && m_count - m_padding >= 8)
            to[done++] = static_cast<char>(take(8));
        if (done == length || m_padding > 0)
            return done;
        m_bits = 0;
        m_count = 0;
        while (done < length && (m_next != m_end || fetch())) {
            const qsizetype n = std::min<qsizetype>(length - done, m_end - m_next);
            std::memcpy(to + done, m_next, size_t(n));
            m_next += n;
            done += n;
        }
        return done;
    }

private:
    bool fetch()
    {
        if (m_ended)
            return false;
        const QByteArrayView piece = m_channel.nextInput();
        if (piece.isEmpty()) {
            m_ended = true;
            return false;
        }
        m_next = reinterpret_cast<const quint8 *>(piece.data());
        m_end = m_next + piece.size();
        return true;
    }

    void refill()
    {
        if (m_end - m_next >= 8) {
            // Eight bytes are loaded at once and only the whole bytes that fit are kept.
            const int bytes = (63 - m_count) >> 3;
            const quint64 word = qFromLittleEndian<quint64>(m_next);
            m_bits |= (word & ((quint64(1) << (8 * bytes)) - 1)) << m_count;
            m_next += bytes;
            m_count += 8 * bytes;
            return;
        }
        while (m_count <= 56) {
            quint64 byte = 0;
            if (m_next != m_end || fetch())
                byte = *m_next++;
            else
                m_padding += 8;
            m_bits |= byte << m_count;
            m_count += 8;
        }
    }

    InflateChannel &m_channel;
    const quint8 *m_next = nullptr;
    const quint8 *m_end = nullptr;
    bool m_ended = false;
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

// The decoder. Output is written into one buffer that holds the window a back-reference may
// reach followed by room for new output; when the room is used up, the new output is handed to
// the channel and the last kInflateWindowSize bytes move to the front.
class Inflater
{
public:
    Inflater(InflateChannel &channel, const InflateLimits &limits)
        : m_channel(channel)
        , m_in(channel)
        , m_limits(limits)
        , m_buffer(new char[kCapacity])
    {}

    InflateOutcome run();

private:
    enum class BlockEnd { Finished, OutputFull, Stopped, Failed };

    static constexpr qsizetype kCapacity = kInflateWindowSize + kInflateBufferSize;

    BlockEnd storedBlock();
    BlockEnd dynamicBlock();
    BlockEnd huffmanBlock(const HuffmanCode &litLen, const HuffmanCode &distance);
    int decode(const HuffmanCode &code);
    int decodeLong(const HuffmanCode &code);
    bool flush();

    BlockEnd fail(QString message)
    {
        m_error = std::move(message);
        return BlockEnd::Failed;
    }

    InflateChannel &m_channel;
    BitReader m_in;
    InflateLimits m_limits;
    std::unique_ptr<char[]> m_buffer;
    // The write position in m_buffer and the start of the output not yet handed on.
    qsizetype m_pos = 0;
    qsizetype m_pending = 0;
    qint64 m_total = 0;
    QString m_error;
    HuffmanCode m_litLen;
    HuffmanCode m_distance;
    HuffmanCode m_codeLengths;
};

InflateOutcome Inflater::run()
{
    bool isFinal = false;
    InflateEnd end = InflateEnd::Complete;
    while (!isFinal) {
        if (m_total >= m_limits.stopAfter) {
            end = InflateEnd::LimitReached;
            break;
        }
        isFinal = m_in.take(1) != 0;
        const quint32 type = m_in.take(2);
        if (m_in.isOverrun())
            return {InflateEnd::Corrupt, m_total,
                    u"The deflate stream ends before its final block."_s};
        BlockEnd blockEnd = BlockEnd::Failed;
        switch (type) {
        case 0:
            blockEnd = storedBlock();
            break;
        case 1:
            blockEnd = huffmanBlock(fixedLitLenCode(), fixedDistanceCode());
            break;
        case 2:
            blockEnd = dynamicBlock();
            break;
        default:
            fail(u"The deflate stream uses the reserved block type."_s);
            break;
        }
        if (blockEnd == BlockEnd::Failed)
            return {InflateEnd::Corrupt, m_total, m_error};
        if (blockEnd == BlockEnd::Stopped)
            return {InflateEnd::Stopped, m_total, {}};
        if (blockEnd == BlockEnd::OutputFull) {
            end = InflateEnd::OutputFull;
            break;
        }
    }
    if (!flush())
        return {InflateEnd::Stopped, m_total, {}};
    return {end, m_total, {}};
}

bool Inflater::flush()
{
    if (m_pos > m_pending
        && !m_channel.takeOutput(QByteArrayView(m_buffer.get() + m_pending, m_pos - m_pending))) {
        return false;
    }
    if (m_pos > kInflateWindowSize) {
        std::memmove(m_buffer.get(), m_buffer.get() + m_pos - kInflateWindowSize,
                     size_t(kInflateWindowSize));
        m_pos = kInflateWindowSize;
    }
    m_pending = m_pos;
    return true;
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
    if (m_total + qint64(length) > m_limits.maxOutput)
        return BlockEnd::OutputFull;
    qsizetype left = length;
    while (left > 0) {
        if (m_pos == kCapacity && !flush())
            return BlockEnd::Stopped;
        const qsizetype room = std::min(left, kCapacity - m_pos);
        const qsizetype copied = m_in.readBytes(m_buffer.get() + m_pos, room);
        m_pos += copied;
        m_total += copied;
        left -= copied;
        if (copied < room)
            return fail(u"The deflate stream ends inside a stored block."_s);
    }
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
    char *const buffer = m_buffer.get();
    for (;;) {
        const int symbol = decode(litLen);
        if (symbol < 0)
            return fail(u"The deflate stream holds an invalid literal or length code."_s);
        if (symbol < 256) {
            if (m_in.isOverrun())
                return fail(u"The deflate stream ends inside a block."_s);
            if (m_total >= m_limits.maxOutput)
                return BlockEnd::OutputFull;
            if (m_pos == kCapacity && !flush())
                return BlockEnd::Stopped;
            buffer[m_pos++] = static_cast<char>(symbol);
            ++m_total;
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
        const qsizetype dist = kDistanceBase[distanceSymbol]
                               + m_in.take(kDistanceExtra[distanceSymbol]);
        if (m_in.isOverrun())
            return fail(u"The deflate stream ends inside a block."_s);
        if (dist > m_total)
            return fail(u"The deflate stream refers back past the start of its output."_s);
        if (m_total + length > m_limits.maxOutput)
            return BlockEnd::OutputFull;
        // After a flush the window keeps the last 32 KiB, the farthest a distance reaches, so
        // `from` stays inside the buffer.
        if (m_pos + length > kCapacity && !flush())
            return BlockEnd::Stopped;

        char *to = buffer + m_pos;
        const char *from = to - dist;
        if (dist >= length) {
            std::memcpy(to, from, size_t(length));
        } else {
            // An overlapping copy repeats the last `dist` bytes, so it must go byte by byte.
            for (qsizetype i = 0; i < length; ++i)
                to[i] = from[i];
        }
        m_pos += length;
        m_total += length;
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

// The whole input at once, the output gathered in one array.
class MemoryChannel final : public InflateChannel
{
public:
    explicit MemoryChannel(QByteArrayView input)
        : m_input(input)
    {}

    QByteArrayView nextInput() override { return std::exchange(m_input, {}); }

    bool takeOutput(QByteArrayView piece) override
    {
        m_output.append(piece);
        return true;
    }

    QByteArray takeResult()
    {
        // Growth by doubling can leave up to half the array unused; the result may be kept long.
        if (m_output.capacity() - m_output.size() > m_output.size() / 4)
            m_output.squeeze();
        return std::move(m_output);
    }

private:
    QByteArrayView m_input;
    QByteArray m_output;
};

} // namespace

InflateOutcome inflateStream(InflateChannel &channel, const InflateLimits &limits)
{
    Inflater inflater(channel, limits);
    return inflater.run();
}

Result<QByteArray> inflate(QByteArrayView deflated, qsizetype outputLimit)
{
    MemoryChannel channel(deflated);
    InflateLimits limits;
    limits.stopAfter = outputLimit;
    limits.maxOutput = outputLimit > std::numeric_limits<qint64>::max() - kInflateBlockOverrun
                           ? std::numeric_limits<qint64>::max()
                           : outputLimit + kInflateBlockOverrun;
    const InflateOutcome outcome = inflateStream(channel, limits);
    if (outcome.end == InflateEnd::Corrupt)
        return makeError(outcome.error);
    return channel.takeResult();
}

} // namespace fb::app
