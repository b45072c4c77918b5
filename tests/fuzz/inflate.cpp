// Fuzzes the DEFLATE decoder. Where zlib is at hand it serves as the reference: both decoders
// must accept and refuse the same streams and agree on every byte they produce. Without it the
// target still checks what the output limit promises.

#include "storage/zip/inflate.h"

#include "fuzzcheck.h"

#include <algorithm>
#include <cstdint>
#include <optional>

#ifdef FB_FUZZ_WITH_ZLIB
#include <zlib.h>
#endif

using namespace fb;
using namespace fb::app;

namespace {

// Small enough that a short input crosses it, so that stopping at the limit is exercised.
constexpr qsizetype kSmallLimit = 1000;

// Inputs up to this size cannot expand to the default output limit (DEFLATE expands at most
// about 1032 times), so their whole stream is decoded and can be compared.
constexpr size_t kComparableInput = 65536;

#ifdef FB_FUZZ_WITH_ZLIB
// What zlib makes of the raw stream: its output once the final block has ended, or nothing
// when it finds the stream corrupt or cut short.
std::optional<QByteArray> zlibInflate(QByteArrayView input)
{
    z_stream stream{};
    if (inflateInit2(&stream, -15) != Z_OK)
        return std::nullopt;
    stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(input.data()));
    stream.avail_in = uInt(input.size());
    QByteArray output;
    char buffer[16384];
    int status = Z_OK;
    while (status == Z_OK) {
        stream.next_out = reinterpret_cast<Bytef *>(buffer);
        stream.avail_out = sizeof buffer;
        status = ::inflate(&stream, Z_NO_FLUSH);
        output.append(buffer, qsizetype(sizeof buffer - stream.avail_out));
        // Without new input or room zlib reports a buffer error: the stream was cut short.
    }
    inflateEnd(&stream);
    if (status != Z_STREAM_END)
        return std::nullopt;
    return output;
}
#endif

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArrayView input(reinterpret_cast<const char *>(data), qsizetype(size));
    const Result<QByteArray> whole = inflate(input);

#ifdef FB_FUZZ_WITH_ZLIB
    if (size <= kComparableInput) {
        const std::optional<QByteArray> reference = zlibInflate(input);
        FB_FUZZ_CHECK(whole.hasValue() == reference.has_value());
        if (whole && reference)
            FB_FUZZ_CHECK(*whole == *reference);
    }
#endif

    const Result<QByteArray> limited = inflate(input, kSmallLimit);
    if (limited)
        FB_FUZZ_CHECK(limited->size() <= kSmallLimit + kInflateBlockOverrun);
    if (whole) {
        // Stopping early only ever drops whole blocks from the end.
        FB_FUZZ_CHECK(limited.hasValue());
        FB_FUZZ_CHECK(whole->startsWith(*limited));
        FB_FUZZ_CHECK(limited->size() >= std::min(kSmallLimit, whole->size()));
    }
    return 0;
}
