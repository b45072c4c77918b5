#include "storage/sha256.h"

#include <QCryptographicHash>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <cstring>

#if defined(__x86_64__) && defined(__GNUC__)
#define FB_SHA256_X86
#include <cpuid.h>
#include <immintrin.h>
#endif

namespace fb::app {

namespace {

#ifdef FB_SHA256_X86

constexpr qsizetype kBlockSize = 64;

// The first 32 bits of the fractional parts of the cube roots of the first 64 primes.
constexpr std::array<quint32, 64> kRoundConstants = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2,
};

// The first 32 bits of the fractional parts of the square roots of the first 8 primes.
constexpr std::array<quint32, 8> kInitialState = {
    0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a, 0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19,
};

using State = std::array<quint32, 8>;

// Only the functions that use the instructions are compiled for them, so the rest of the
// program runs on any x86-64 and no build flag is needed.
#define FB_SHA256_TARGET __attribute__((target("sha,sse4.1,ssse3")))

FB_SHA256_TARGET __m128i loadWords(const void *from)
{
    return _mm_loadu_si128(static_cast<const __m128i *>(from));
}

// Runs the compression function over `count` consecutive 64-byte blocks, which need no
// particular alignment.
FB_SHA256_TARGET void compressBlocks(State &state, const char *blocks, qsizetype count)
{
    // Message words are big-endian: this reverses the bytes within each 32-bit lane.
    const __m128i byteSwap = _mm_set_epi64x(0x0c0d0e0f08090a0bLL, 0x0405060700010203LL);

    // The round instruction keeps the working variables in two registers holding A, B, E, F
    // and C, D, G, H from the highest lane down, so the state is rearranged once here and
    // once at the end rather than for every block.
    const __m128i abcd = loadWords(state.data());
    const __m128i efgh = loadWords(state.data() + 4);
    const __m128i badc = _mm_shuffle_epi32(abcd, 0xB1);
    const __m128i hgfe = _mm_shuffle_epi32(efgh, 0x1B);
    __m128i abef = _mm_alignr_epi8(badc, hgfe, 8);
    __m128i cdgh = _mm_blend_epi16(hgfe, badc, 0xF0);

    for (const char *block = blocks; block != blocks + count * kBlockSize; block += kBlockSize) {
        const __m128i abefBefore = abef;
        const __m128i cdghBefore = cdgh;

        // The message schedule lives in a ring of four registers of four words each; a fully
        // unrolled loop lets every index below be resolved at compile time.
        __m128i w[4];
        for (int i = 0; i < 4; ++i)
            w[i] = _mm_shuffle_epi8(loadWords(block + 16 * i), byteSwap);

#pragma GCC unroll 16
        for (int g = 0; g < 16; ++g) {
            if (g >= 4) {
                // W[t] = s1(W[t-2]) + W[t-7] + s0(W[t-15]) + W[t-16] for four t at once: the
                // first instruction adds the s0 terms to W[t-16], the byte shift gathers
                // W[t-7..t-4] from two registers, and the second instruction adds the s1
                // terms, feeding the group's own first two words into its last two.
                const __m128i sigma0Part = _mm_sha256msg1_epu32(w[g % 4], w[(g + 1) % 4]);
                const __m128i fromT7 = _mm_alignr_epi8(w[(g + 3) % 4], w[(g + 2) % 4], 4);
                w[g % 4] = _mm_sha256msg2_epu32(_mm_add_epi32(sigma0Part, fromT7), w[(g + 3) % 4]);
            }
            const __m128i wk = _mm_add_epi32(w[g % 4], loadWords(kRoundConstants.data() + 4 * g));
            // Each instruction does two rounds and returns the new A, B, E, F; after two rounds
            // the old A, B, E, F are the new C, D, G, H, so the two registers swap roles and
            // swap back after the second pair.
            cdgh = _mm_sha256rnds2_epu32(cdgh, abef, wk);
            abef = _mm_sha256rnds2_epu32(abef, cdgh, _mm_shuffle_epi32(wk, 0x0E));
        }

        abef = _mm_add_epi32(abef, abefBefore);
        cdgh = _mm_add_epi32(cdgh, cdghBefore);
    }

    const __m128i feba = _mm_shuffle_epi32(abef, 0x1B);
    const __m128i dchg = _mm_shuffle_epi32(cdgh, 0xB1);
    _mm_storeu_si128(reinterpret_cast<__m128i *>(state.data()), _mm_blend_epi16(feba, dchg, 0xF0));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(state.data() + 4), _mm_alignr_epi8(dchg, feba, 8));
}

#undef FB_SHA256_TARGET

// Asks the processor directly rather than through the compiler's feature builtin, which not
// every supported compiler knows the SHA extensions by.
bool detectShaInstructions()
{
    unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;
    if (!__get_cpuid(1, &eax, &ebx, &ecx, &edx))
        return false;
    const bool hasSsse3 = ecx & bit_SSSE3;
    const bool hasSse41 = ecx & bit_SSE4_1;
    if (!__get_cpuid_count(7, 0, &eax, &ebx, &ecx, &edx))
        return false;
    const bool hasSha = ebx & bit_SHA;
    return hasSsse3 && hasSse41 && hasSha;
}

#endif // FB_SHA256_X86

} // namespace

bool sha256UsesCpuInstructions()
{
#ifdef FB_SHA256_X86
    static const bool hasInstructions = detectShaInstructions();
    return hasInstructions;
#else
    return false;
#endif
}

QByteArray portableSha256(QByteArrayView data)
{
    return QCryptographicHash::hash(data, QCryptographicHash::Sha256);
}

Sha256::Sha256()
{
    reset();
}

Sha256::~Sha256() = default;

void Sha256::reset()
{
    m_blockFill = 0;
    m_length = 0;
#ifdef FB_SHA256_X86
    if (sha256UsesCpuInstructions()) {
        m_state = kInitialState;
        return;
    }
#endif
    if (!m_portable)
        m_portable = std::make_unique<QCryptographicHash>(QCryptographicHash::Sha256);
    m_portable->reset();
}

void Sha256::addData(QByteArrayView data)
{
    if (data.isEmpty())
        return;
    if (m_portable) {
        m_portable->addData(data);
        return;
    }
#ifdef FB_SHA256_X86
    m_length += quint64(data.size());
    const char *next = data.data();
    qsizetype left = data.size();
    if (m_blockFill > 0) {
        const qsizetype taken = std::min(left, kBlockSize - m_blockFill);
        std::memcpy(m_block.data() + m_blockFill, next, size_t(taken));
        m_blockFill += taken;
        next += taken;
        left -= taken;
        if (m_blockFill < kBlockSize)
            return;
        compressBlocks(m_state, m_block.data(), 1);
        m_blockFill = 0;
    }
    // Whole blocks are compressed where they lie; only the rest is copied.
    const qsizetype fullBlocks = left / kBlockSize;
    if (fullBlocks > 0)
        compressBlocks(m_state, next, fullBlocks);
    m_blockFill = left - fullBlocks * kBlockSize;
    if (m_blockFill > 0)
        std::memcpy(m_block.data(), next + fullBlocks * kBlockSize, size_t(m_blockFill));
#endif
}

QByteArray Sha256::result()
{
    if (m_portable) {
        const QByteArray digest = m_portable->result();
        reset();
        return digest;
    }
    QByteArray digest;
#ifdef FB_SHA256_X86
    // The rest of the message, a single 1 bit, zeros, and the message length in bits as a
    // 64-bit big-endian number: one block, or two when the length no longer fits after the
    // rest and the 1 bit.
    std::array<char, 2 * kBlockSize> last{};
    std::memcpy(last.data(), m_block.data(), size_t(m_blockFill));
    last[size_t(m_blockFill)] = char(0x80);
    const qsizetype lastBlocks = m_blockFill + 1 + 8 <= kBlockSize ? 1 : 2;
    qToBigEndian(m_length * 8, last.data() + lastBlocks * kBlockSize - 8);
    compressBlocks(m_state, last.data(), lastBlocks);

    digest.resize(qsizetype(m_state.size() * 4));
    for (size_t i = 0; i < m_state.size(); ++i)
        qToBigEndian(m_state[i], digest.data() + 4 * i);
#endif
    reset();
    return digest;
}

QByteArray sha256(QByteArrayView data)
{
    Sha256 hash;
    hash.addData(data);
    return hash.result();
}

QString sha256Hex(QByteArrayView data)
{
    return QString::fromLatin1(sha256(data).toHex());
}

} // namespace fb::app
