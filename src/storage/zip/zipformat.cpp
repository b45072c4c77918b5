#include "storage/zip/zipformat.h"

#include <algorithm>
#include <array>

namespace fb::app::zipformat {

namespace {

constexpr quint16 kVersion = 20;
constexpr quint16 kZip64Version = 45;
constexpr quint16 kDosDate = 0x0021; // 1 January 1980, the earliest date the format holds

class RecordBuilder
{
public:
    explicit RecordBuilder(qsizetype capacity) { m_bytes.reserve(capacity); }

    RecordBuilder &u16(quint16 value) { return put(value); }
    RecordBuilder &u32(quint32 value) { return put(value); }
    RecordBuilder &u64(quint64 value) { return put(value); }

    RecordBuilder &bytes(const QByteArray &data)
    {
        m_bytes.append(data);
        return *this;
    }

    QByteArray take() { return std::move(m_bytes); }

private:
    template<typename T>
    RecordBuilder &put(T value)
    {
        std::array<char, sizeof(T)> raw;
        qToLittleEndian(value, raw.data());
        m_bytes.append(raw.data(), qsizetype(raw.size()));
        return *this;
    }

    QByteArray m_bytes;
};

bool needsZip64(quint64 value)
{
    return value >= kZip64Marker;
}

quint32 field32(quint64 value)
{
    return needsZip64(value) ? kZip64Marker : quint32(value);
}

QByteArray zip64Extra(std::initializer_list<quint64> values)
{
    RecordBuilder extra(4 + 8 * qsizetype(values.size()));
    extra.u16(kZip64ExtraId).u16(quint16(8 * values.size()));
    for (const quint64 value : values)
        extra.u64(value);
    return extra.take();
}

} // namespace

bool resolveZip64Fields(QByteArrayView extra, quint64 *uncompressedSize, quint64 *compressedSize,
                        quint64 *localHeaderOffset)
{
    std::array<quint64 *, 3> marked{};
    size_t markedCount = 0;
    for (quint64 *field : {uncompressedSize, compressedSize, localHeaderOffset}) {
        if (field && *field == kZip64Marker)
            marked[markedCount++] = field;
    }
    if (markedCount == 0)
        return true;

    qsizetype pos = 0;
    while (extra.size() - pos >= 4) {
        const quint16 id = u16At(extra, pos);
        const qsizetype length = u16At(extra, pos + 2);
        if (length > extra.size() - pos - 4)
            return false;
        if (id == kZip64ExtraId) {
            if (length < qsizetype(8 * markedCount))
                return false;
            for (size_t i = 0; i < markedCount; ++i)
                *marked[i] = u64At(extra, pos + 4 + qsizetype(8 * i));
            return true;
        }
        pos += 4 + length;
    }
    return false;
}

QByteArray localHeader(const StoredEntryRecord &entry)
{
    // A local header that needs ZIP64 must give both sizes in its extra field.
    const bool zip64 = needsZip64(entry.size);
    const QByteArray extra = zip64 ? zip64Extra({entry.size, entry.size}) : QByteArray();
    RecordBuilder out(kLocalHeaderSize + entry.name.size() + extra.size());
    out.u32(kLocalHeaderSignature)
        .u16(zip64 ? kZip64Version : kVersion)
        .u16(0) // flags
        .u16(0) // method: stored
        .u16(0) // time
        .u16(kDosDate)
        .u32(entry.crc)
        .u32(field32(entry.size))
        .u32(field32(entry.size))
        .u16(quint16(entry.name.size()))
        .u16(quint16(extra.size()))
        .bytes(entry.name)
        .bytes(extra);
    return out.take();
}

QByteArray centralHeader(const StoredEntryRecord &entry)
{
    QByteArray extra;
    if (needsZip64(entry.size) && needsZip64(entry.localHeaderOffset))
        extra = zip64Extra({entry.size, entry.size, entry.localHeaderOffset});
    else if (needsZip64(entry.size))
        extra = zip64Extra({entry.size, entry.size});
    else if (needsZip64(entry.localHeaderOffset))
        extra = zip64Extra({entry.localHeaderOffset});
    const quint16 version = extra.isEmpty() ? kVersion : kZip64Version;

    RecordBuilder out(kCentralHeaderSize + entry.name.size() + extra.size());
    out.u32(kCentralHeaderSignature)
        .u16(version) // made by
        .u16(version) // needed
        .u16(0)       // flags
        .u16(0)       // method: stored
        .u16(0)       // time
        .u16(kDosDate)
        .u32(entry.crc)
        .u32(field32(entry.size))
        .u32(field32(entry.size))
        .u16(quint16(entry.name.size()))
        .u16(quint16(extra.size()))
        .u16(0) // comment length
        .u16(0) // disk number start
        .u16(0) // internal attributes
        .u32(0) // external attributes
        .u32(field32(entry.localHeaderOffset))
        .bytes(entry.name)
        .bytes(extra);
    return out.take();
}

QByteArray directoryEnd(quint64 entryCount, quint64 directoryOffset, quint64 directorySize)
{
    const bool zip64 = entryCount > kZip64CountMarker || needsZip64(directoryOffset)
                       || needsZip64(directorySize);
    RecordBuilder out(kEndRecordSize + (zip64 ? kZip64EndRecordSize + kZip64LocatorSize : 0));
    if (zip64) {
        const quint64 recordOffset = directoryOffset + directorySize;
        out.u32(kZip64EndRecordSignature)
            .u64(kZip64EndRecordSize - 12) // the size of the rest of the record
            .u16(kZip64Version)            // made by
            .u16(kZip64Version)            // needed
            .u32(0)                        // this disk
            .u32(0)                        // disk with the directory
            .u64(entryCount)
            .u64(entryCount)
            .u64(directorySize)
            .u64(directoryOffset);
        out.u32(kZip64LocatorSignature)
            .u32(0) // disk with the ZIP64 end record
            .u64(recordOffset)
            .u32(1); // disks in all
    }
    const auto count = quint16(std::min<quint64>(entryCount, kZip64CountMarker));
    out.u32(kEndRecordSignature)
        .u16(0) // this disk
        .u16(0) // disk with the directory
        .u16(count)
        .u16(count)
        .u32(field32(directorySize))
        .u32(field32(directoryOffset))
        .u16(0); // comment length
    return out.take();
}

} // namespace fb::app::zipformat
