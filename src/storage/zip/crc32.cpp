#include "storage/zip/crc32.h"

#include <QtEndian>

#include <array>

namespace fb::app {

namespace {

using CrcTables = std::array<std::array<quint32, 256>, 8>;

// Table 0 is the classic byte-at-a-time table. Table k gives the effect of a byte that is
// followed by k more bytes, so eight bytes can be folded into the CRC with eight independent
// look-ups instead of eight dependent ones ("slicing by eight").
constexpr CrcTables makeCrcTables()
{
    CrcTables tables{};
    for (quint32 n = 0; n < 256; ++n) {
        quint32 c = n;
        for (int k = 0; k < 8; ++k)
            c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
        tables[0][n] = c;
    }
    for (size_t k = 1; k < tables.size(); ++k) {
        for (quint32 n = 0; n < 256; ++n) {
            const quint32 previous = tables[k - 1][n];
            tables[k][n] = tables[0][previous & 0xFF] ^ (previous >> 8);
        }
    }
    return tables;
}

constexpr CrcTables kCrcTables = makeCrcTables();

} // namespace

quint32 crc32(QByteArrayView data, quint32 previous)
{
    const auto &t = kCrcTables;
    quint32 c = ~previous;
    const char *p = data.data();
    qsizetype left = data.size();
    while (left >= 8) {
        // The words are read as little-endian on every machine, which keeps the tables valid.
        const quint32 low = qFromLittleEndian<quint32>(p) ^ c;
        const quint32 high = qFromLittleEndian<quint32>(p + 4);
        c = t[7][low & 0xFF] ^ t[6][(low >> 8) & 0xFF] ^ t[5][(low >> 16) & 0xFF] ^ t[4][low >> 24]
            ^ t[3][high & 0xFF] ^ t[2][(high >> 8) & 0xFF] ^ t[1][(high >> 16) & 0xFF]
            ^ t[0][high >> 24];
        p += 8;
        left -= 8;
    }
    for (; left > 0; --left, ++p)
        c = t[0][(c ^ static_cast<quint8>(*p)) & 0xFF] ^ (c >> 8);
    return ~c;
}

} // namespace fb::app
