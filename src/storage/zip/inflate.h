#pragma once

#include "core/result.h"

#include <QByteArray>
#include <QByteArrayView>

namespace fb::app {

// The output an archive entry may inflate to before decoding stops (64 MiB), a guard against
// archives that expand without bound.
inline constexpr qsizetype kInflateOutputLimit = 67108864;

// How far past the output limit the block that crosses it may run. Common encoders close a
// block every few MiB of output, so their blocks are always finished; a hostile block, which
// could otherwise expand about two thousand times its input, is cut off here.
inline constexpr qsizetype kInflateBlockOverrun = 16777216;

// Decodes a raw DEFLATE stream (no zlib or gzip wrapper) with stored, fixed and dynamic
// Huffman blocks.
//
// Before each block the output size is compared with `outputLimit`; once it has been reached,
// decoding stops and the output so far is the result. The block in progress when the limit is
// passed is finished (up to kInflateBlockOverrun bytes past the limit), so the output can end
// somewhat past it.
//
// A stream that ends before its final block, or that is corrupt (a reserved block type, a
// stored length that disagrees with its complement, an over-subscribed or incomplete code, a
// code length repeated before any was given, a symbol or distance outside the tables, a
// distance reaching before the start of the output), fails: a partial result would look like a
// whole file to the caller. The error is a short sentence for logs; callers word their own.
Result<QByteArray> inflate(QByteArrayView deflated, qsizetype outputLimit = kInflateOutputLimit);

} // namespace fb::app
