#pragma once

#include "core/result.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <limits>

namespace fb::app {

// The output an archive entry may inflate to in memory (64 MiB), a guard against archives that
// expand without bound. Entries unpacked to disk are streamed instead and bounded by their
// declared sizes.
inline constexpr qsizetype kInflateOutputLimit = 67108864;

// How far past the output limit the block that crosses it may run. Common encoders close a
// block every few MiB of output, so their blocks are always finished; a hostile block, which
// could otherwise expand about two thousand times its input, is cut off here.
inline constexpr qsizetype kInflateBlockOverrun = 16777216;

// The memory the decoder works in: the 32 KiB a back-reference may reach, plus the output it
// gathers before handing it on. Decoding any stream, however long, needs no more than this.
inline constexpr qsizetype kInflateWindowSize = 32768;
inline constexpr qsizetype kInflateBufferSize = 262144;

// Where the decoder takes its compressed input from and hands its output to.
class InflateChannel
{
public:
    virtual ~InflateChannel() = default;

    // The next piece of the compressed stream, or an empty view at its end. A channel that
    // cannot read its source returns an empty view and remembers why, so the caller can tell a
    // read failure from a short stream. The view must stay valid until the next call.
    virtual QByteArrayView nextInput() = 0;

    // Takes the next piece of decoded output; returning false stops decoding.
    virtual bool takeOutput(QByteArrayView piece) = 0;
};

struct InflateLimits
{
    // Once this much output has been produced, decoding stops before the next block.
    qint64 stopAfter = std::numeric_limits<qint64>::max();
    // No output beyond this many bytes is produced: decoding stops before the literal, copy or
    // stored block that would pass it.
    qint64 maxOutput = std::numeric_limits<qint64>::max();
};

enum class InflateEnd {
    Complete,     // the final block was decoded
    LimitReached, // stopped before a block at or past InflateLimits::stopAfter
    OutputFull,   // stopped because more output would have passed InflateLimits::maxOutput
    Stopped,      // InflateChannel::takeOutput() returned false
    Corrupt,      // the stream is corrupt or ends early; InflateOutcome::error says how
};

struct InflateOutcome
{
    InflateEnd end = InflateEnd::Corrupt;
    // The bytes handed to takeOutput() in all.
    qint64 outputSize = 0;
    // For Corrupt, a short sentence for logs; callers word the error their users see.
    QString error;
};

// Decodes a raw DEFLATE stream (no zlib or gzip wrapper) with stored, fixed and dynamic
// Huffman blocks, piece by piece, in bounded memory (kInflateWindowSize + kInflateBufferSize).
//
// A stream that ends before its final block, or that is corrupt (a reserved block type, a
// stored length that disagrees with its complement, an over-subscribed or incomplete code, a
// code length repeated before any was given, a symbol or distance outside the tables, a
// distance reaching before the start of the output), ends as Corrupt. Output already handed on
// stays with the channel, which must then discard it: a partial result would look like a whole
// file. Input after the final block is not read.
InflateOutcome inflateStream(InflateChannel &channel, const InflateLimits &limits = {});

// Decodes a whole stream held in memory, on the same decoder.
//
// Before each block the output size is compared with `outputLimit`; once it has been reached,
// decoding stops and the output so far is the result. The block in progress when the limit is
// passed is finished (up to kInflateBlockOverrun bytes past the limit), so the output can end
// somewhat past it. A corrupt or truncated stream fails with the decoder's short sentence.
Result<QByteArray> inflate(QByteArrayView deflated, qsizetype outputLimit = kInflateOutputLimit);

} // namespace fb::app
