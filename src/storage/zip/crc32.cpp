#include "storage/zip/crc32.h"

#include <array>

namespace fb::app {

namespace {

constexpr std::array<quint32, 256> makeCrcTable()
{
    std::array<quint32, 256> table{};
    for (quint32 n = 0; n < 256; ++n) {
        quint32 c = n;
        for (int k = 0; k < 8; ++k)
            c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
        table[n] = c;
    }
    return table;
}

constexpr std::array<quint32, 256> kCrcTable = makeCrcTable();

} // namespace

quint32 crc32(QByteArrayView data, quint32 previous)
{
    quint32 c = ~previous;
    for (const char byte : data)
        c = kCrcTable[(c ^ static_cast<quint8>(byte)) & 0xFF] ^ (c >> 8);
    return ~c;
}

} // namespace fb::app
