#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QtEndian>

// The record layouts of the ZIP format that the reader and the writer share.
namespace fb::app::zipformat {

inline constexpr quint32 kLocalHeaderSignature = 0x04034B50;
inline constexpr quint32 kCentralHeaderSignature = 0x02014B50;
inline constexpr quint32 kEndRecordSignature = 0x06054B50;
inline constexpr quint32 kZip64EndRecordSignature = 0x06064B50;
inline constexpr quint32 kZip64LocatorSignature = 0x07064B50;
inline constexpr quint16 kZip64ExtraId = 0x0001;

inline constexpr qsizetype kLocalHeaderSize = 30;
inline constexpr qsizetype kCentralHeaderSize = 46;
inline constexpr qsizetype kEndRecordSize = 22;
inline constexpr qsizetype kZip64EndRecordSize = 56;
inline constexpr qsizetype kZip64LocatorSize = 20;
inline constexpr qsizetype kMaxCommentSize = 65535;
inline constexpr qsizetype kMaxNameBytes = 65535;

// A 32-bit size or offset with this value, or a 16-bit entry count of 0xFFFF, stands for a
// value kept in the ZIP64 records. A real value this large is therefore written as ZIP64 too.
inline constexpr quint32 kZip64Marker = 0xFFFFFFFF;
inline constexpr quint16 kZip64CountMarker = 0xFFFF;

inline constexpr quint16 kFlagEncrypted = 0x0001;
inline constexpr quint16 kFlagDataDescriptor = 0x0008;

// Little-endian reads that are only made after the caller has checked the bounds.
inline quint16 u16At(QByteArrayView bytes, qsizetype pos)
{
    return qFromLittleEndian<quint16>(bytes.data() + pos);
}

inline quint32 u32At(QByteArrayView bytes, qsizetype pos)
{
    return qFromLittleEndian<quint32>(bytes.data() + pos);
}

inline quint64 u64At(QByteArrayView bytes, qsizetype pos)
{
    return qFromLittleEndian<quint64>(bytes.data() + pos);
}

// Replaces the header fields that hold kZip64Marker with their values from the ZIP64 extended
// information field (0x0001) of `extra`, which lists them in this order: uncompressed size,
// compressed size, local header offset. A null pointer is a field the header does not have.
// Fails when a marked field has no value there.
bool resolveZip64Fields(QByteArrayView extra, quint64 *uncompressedSize, quint64 *compressedSize,
                        quint64 *localHeaderOffset);

// One entry as the writer records it: stored, so its compressed and uncompressed sizes are
// both `size`.
struct StoredEntryRecord
{
    QByteArray name;
    quint32 crc = 0;
    quint64 size = 0;
    quint64 localHeaderOffset = 0;
};

// The records of the writer's archives. Each carries the same fixed time stamp, so the same
// entries always give the same bytes. ZIP64 fields appear only for the values that need them,
// so an archive that needs none is a plain ZIP archive.
QByteArray localHeader(const StoredEntryRecord &entry);
QByteArray centralHeader(const StoredEntryRecord &entry);
// The end of the central directory: the ZIP64 end record and its locator when there are more
// than 65,535 entries or the directory's size or offset needs 64 bits, then the classic record.
QByteArray directoryEnd(quint64 entryCount, quint64 directoryOffset, quint64 directorySize);

} // namespace fb::app::zipformat
