#include "storage/zip/zipreader.h"

#include "storage/zip/inflate.h"

#include <QtEndian>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

constexpr quint32 kLocalHeaderSignature = 0x04034B50;
constexpr quint32 kCentralHeaderSignature = 0x02014B50;
constexpr quint32 kEndRecordSignature = 0x06054B50;
constexpr qsizetype kLocalHeaderSize = 30;
constexpr qsizetype kCentralHeaderSize = 46;
constexpr qsizetype kEndRecordSize = 22;
constexpr qsizetype kMaxCommentSize = 65535;

// Little-endian reads that are only made after the caller has checked the bounds.
quint16 u16At(QByteArrayView bytes, qsizetype pos)
{
    return qFromLittleEndian<quint16>(bytes.data() + pos);
}

quint32 u32At(QByteArrayView bytes, qsizetype pos)
{
    return qFromLittleEndian<quint32>(bytes.data() + pos);
}

bool fits(QByteArrayView archive, qsizetype pos, qsizetype length)
{
    return pos >= 0 && length >= 0 && pos <= archive.size() && length <= archive.size() - pos;
}

qsizetype findEndRecord(QByteArrayView archive)
{
    const qsizetype lowest
        = std::max<qsizetype>(0, archive.size() - kEndRecordSize - kMaxCommentSize);
    for (qsizetype pos = archive.size() - kEndRecordSize; pos >= lowest; --pos) {
        if (u32At(archive, pos) == kEndRecordSignature)
            return pos;
    }
    return -1;
}

} // namespace

Result<QList<ZipDirectoryEntry>> readZipDirectory(QByteArrayView archive)
{
    if (archive.size() < kEndRecordSize)
        return makeError(u"The archive is too short to be a ZIP archive."_s);
    const qsizetype end = findEndRecord(archive);
    if (end < 0)
        return makeError(u"The archive has no end of central directory record."_s);

    const quint16 count = u16At(archive, end + 10);
    qsizetype pos = u32At(archive, end + 16);
    QList<ZipDirectoryEntry> entries;
    // Every header takes at least 46 bytes, so a count beyond what fits is not reserved for.
    entries.reserve(std::min<qsizetype>(count, archive.size() / kCentralHeaderSize));
    for (quint16 i = 0; i < count; ++i) {
        if (!fits(archive, pos, kCentralHeaderSize))
            return makeError(u"A central directory header runs past the end of the archive."_s);
        if (u32At(archive, pos) != kCentralHeaderSignature)
            return makeError(u"A central directory header has no signature."_s);
        const quint16 nameLength = u16At(archive, pos + 28);
        const quint16 extraLength = u16At(archive, pos + 30);
        const quint16 commentLength = u16At(archive, pos + 32);
        const qsizetype recordSize = kCentralHeaderSize + nameLength + extraLength + commentLength;
        if (!fits(archive, pos, recordSize))
            return makeError(u"A central directory header runs past the end of the archive."_s);

        ZipDirectoryEntry entry;
        entry.method = u16At(archive, pos + 10);
        entry.compressedSize = u32At(archive, pos + 20);
        entry.uncompressedSize = u32At(archive, pos + 24);
        entry.localHeaderOffset = u32At(archive, pos + 42);
        entry.name = QString::fromUtf8(archive.sliced(pos + kCentralHeaderSize, nameLength));
        entries.append(std::move(entry));
        pos += recordSize;
    }
    return entries;
}

Result<QByteArray> extractZipEntry(QByteArrayView archive, const ZipDirectoryEntry &entry)
{
    const qsizetype header = entry.localHeaderOffset;
    if (!fits(archive, header, kLocalHeaderSize))
        return makeError(u"A local header runs past the end of the archive."_s);
    if (u32At(archive, header) != kLocalHeaderSignature)
        return makeError(u"A local header has no signature."_s);
    const qsizetype dataStart
        = header + kLocalHeaderSize + u16At(archive, header + 26) + u16At(archive, header + 28);
    if (!fits(archive, dataStart, entry.compressedSize))
        return makeError(u"An entry's data runs past the end of the archive."_s);
    const QByteArrayView data = archive.sliced(dataStart, entry.compressedSize);

    switch (entry.method) {
    case kZipStored:
        return data.toByteArray();
    case kZipDeflated:
        // Some writers give an empty entry no deflate stream at all.
        if (entry.compressedSize == 0 && entry.uncompressedSize == 0)
            return QByteArray();
        return inflate(data, kInflateOutputLimit);
    default:
        return makeError(u"An entry uses a compression method other than stored or deflate."_s);
    }
}

Result<QByteArray> extractZipEntry(QByteArrayView archive, QStringView name)
{
    const Result<QList<ZipDirectoryEntry>> entries = readZipDirectory(archive);
    if (!entries)
        return makeError(entries.error());
    for (const ZipDirectoryEntry &entry : *entries) {
        if (entry.name == name)
            return extractZipEntry(archive, entry);
    }
    return makeError(u"The archive has no entry of that name."_s);
}

} // namespace fb::app
