#pragma once

#include <QByteArrayView>

namespace fb::app {

// The CRC-32 of ZIP archives (reflected, polynomial 0xEDB88320, initial value all ones, final
// complement). Passing the CRC of the data so far as `previous` continues it over more data,
// so crc32(b, crc32(a)) equals the CRC of a followed by b.
quint32 crc32(QByteArrayView data, quint32 previous = 0);

} // namespace fb::app
