#include "storage/zip/zipreader.h"

#include "storage/zip/crc32.h"
#include "storage/zip/inflate.h"
#include "storage/zip/zipformat.h"
#include "storage/zip/zipmessages.h"
#include "storage/zip/zipsource.h"

#include <QSet>

#include <algorithm>
#include <limits>

namespace fb::app {

using namespace zipformat;

namespace {

// The most compressed data read from a device at once.
constexpr qint64 kReadPiece = 262144;
constexpr auto kMaxOffset = quint64(std::numeric_limits<qint64>::max());

// Where the central directory lies and how many entries it lists.
struct DirectoryLocation
{
    quint64 count = 0;
    quint64 offset = 0;
    // Where the records after the directory begin; no header may run past it.
    qint64 end = 0;
};

// The position of the end of central directory record: the last one within reach of the
// longest comment, searched from the end.
Result<qint64> findEndRecord(ZipSource &archive)
{
    if (archive.size() < kEndRecordSize)
        return makeError(zipmessage::tooShort());
    const qint64 tailSize = std::min<qint64>(archive.size(), kEndRecordSize + kMaxCommentSize);
    const qint64 tailStart = archive.size() - tailSize;
    const std::optional<QByteArrayView> tail = archive.read(tailStart, tailSize);
    if (!tail)
        return makeError(zipmessage::unreadable());
    for (qsizetype pos = tail->size() - kEndRecordSize; pos >= 0; --pos) {
        if (u32At(*tail, pos) == kEndRecordSignature)
            return tailStart + pos;
    }
    return makeError(zipmessage::noEndRecord());
}

Result<DirectoryLocation> locateDirectory(ZipSource &archive)
{
    const Result<qint64> end = findEndRecord(archive);
    if (!end)
        return makeError(end.error());
    const std::optional<QByteArrayView> record = archive.read(*end, kEndRecordSize);
    if (!record)
        return makeError(zipmessage::unreadable());
    DirectoryLocation location{u16At(*record, 10), u32At(*record, 16), *end};

    // A ZIP64 locator right before the end record points to the ZIP64 end record, whose values
    // replace the classic ones. Some writers add it even when the classic values would do.
    if (*end < kZip64LocatorSize)
        return location;
    const std::optional<QByteArrayView> locator = archive.read(*end - kZip64LocatorSize,
                                                               kZip64LocatorSize);
    if (!locator)
        return makeError(zipmessage::unreadable());
    if (u32At(*locator, 0) != kZip64LocatorSignature)
        return location;
    // The ZIP64 end record must end before the locator.
    const quint64 recordOffset = u64At(*locator, 8);
    const qint64 latestOffset = *end - kZip64LocatorSize - kZip64EndRecordSize;
    if (latestOffset < 0 || recordOffset > quint64(latestOffset))
        return makeError(zipmessage::damagedZip64EndRecord());
    const std::optional<QByteArrayView> zip64 = archive.read(qint64(recordOffset),
                                                             kZip64EndRecordSize);
    if (!zip64)
        return makeError(zipmessage::unreadable());
    if (u32At(*zip64, 0) != kZip64EndRecordSignature)
        return makeError(zipmessage::damagedZip64EndRecord());
    return DirectoryLocation{u64At(*zip64, 32), u64At(*zip64, 48), qint64(recordOffset)};
}

Result<ZipDirectoryEntry> parseCentralHeader(QByteArrayView header, qsizetype nameLength,
                                             qsizetype extraLength)
{
    ZipDirectoryEntry entry;
    entry.flags = u16At(header, 8);
    entry.method = u16At(header, 10);
    entry.crc32 = u32At(header, 16);
    entry.compressedSize = u32At(header, 20);
    entry.uncompressedSize = u32At(header, 24);
    entry.localHeaderOffset = u32At(header, 42);
    entry.name = QString::fromUtf8(header.sliced(kCentralHeaderSize, nameLength));
    const QByteArrayView extra = header.sliced(kCentralHeaderSize + nameLength, extraLength);
    if (!resolveZip64Fields(extra, &entry.uncompressedSize, &entry.compressedSize,
                            &entry.localHeaderOffset)) {
        return makeError(zipmessage::missingZip64Sizes(entry.name));
    }
    return entry;
}

// The position of an entry's data, after checking that its local header agrees with the
// directory. A header followed by a data descriptor leaves its sizes and CRC-32 to it.
Result<qint64> locateData(ZipSource &archive, const ZipDirectoryEntry &entry)
{
    const auto headerOffset = qint64(std::min<quint64>(entry.localHeaderOffset, kMaxOffset));
    std::optional<QByteArrayView> header = archive.read(headerOffset, kLocalHeaderSize);
    if (!header)
        return makeError(archive.hasReadError() ? zipmessage::unreadable()
                                                : zipmessage::dataPastEnd(entry.name));
    if (u32At(*header, 0) != kLocalHeaderSignature)
        return makeError(zipmessage::damagedHeader(entry.name));
    const quint16 flags = u16At(*header, 6);
    const quint32 crc = u32At(*header, 14);
    quint64 compressedSize = u32At(*header, 18);
    quint64 uncompressedSize = u32At(*header, 22);
    const qsizetype nameLength = u16At(*header, 26);
    const qsizetype extraLength = u16At(*header, 28);
    const qint64 dataStart = headerOffset + kLocalHeaderSize + nameLength + extraLength;
    if (dataStart > archive.size() || entry.compressedSize > quint64(archive.size() - dataStart))
        return makeError(zipmessage::dataPastEnd(entry.name));

    if (!(flags & kFlagDataDescriptor)) {
        const std::optional<QByteArrayView> extra = archive.read(headerOffset + kLocalHeaderSize
                                                                     + nameLength,
                                                                 extraLength);
        if (!extra)
            return makeError(archive.hasReadError() ? zipmessage::unreadable()
                                                    : zipmessage::dataPastEnd(entry.name));
        if (!resolveZip64Fields(*extra, &uncompressedSize, &compressedSize, nullptr))
            return makeError(zipmessage::damagedHeader(entry.name));
        if (crc != entry.crc32 || compressedSize != entry.compressedSize
            || uncompressedSize != entry.uncompressedSize) {
            return makeError(zipmessage::headerDisagrees(entry.name));
        }
    }
    return dataStart;
}

// Feeds an entry's compressed data to the decoder and its output to the sink, keeping the
// first failure of either.
class EntryChannel final : public InflateChannel
{
public:
    EntryChannel(ZipSource &archive, qint64 start, qint64 size, const ZipEntrySink &sink)
        : m_archive(archive)
        , m_next(start)
        , m_end(start + size)
        , m_sink(sink)
    {}

    QByteArrayView nextInput() override
    {
        const qint64 length = std::min(kReadPiece, m_end - m_next);
        if (length <= 0)
            return {};
        const std::optional<QByteArrayView> piece = m_archive.read(m_next, length);
        if (!piece)
            return {};
        m_next += length;
        return *piece;
    }

    bool takeOutput(QByteArrayView piece) override
    {
        m_crc = crc32(piece, m_crc);
        Result<void> taken = m_sink(piece);
        if (!taken)
            m_sinkError = taken.error();
        return bool(taken);
    }

    quint32 crc() const { return m_crc; }
    const QString &sinkError() const { return m_sinkError; }

private:
    ZipSource &m_archive;
    qint64 m_next;
    qint64 m_end;
    const ZipEntrySink &m_sink;
    quint32 m_crc = 0;
    QString m_sinkError;
};

// Hands on stored data as it is, or decodes deflated data; the CRC-32 is left to the caller.
Result<void> transferData(EntryChannel &channel, const ZipDirectoryEntry &entry, ZipSource &archive)
{
    if (entry.method == kZipStored) {
        if (entry.compressedSize != entry.uncompressedSize) {
            return makeError(entry.compressedSize > entry.uncompressedSize
                                 ? zipmessage::longerThanDeclared(entry.name)
                                 : zipmessage::shorterThanDeclared(entry.name));
        }
        for (QByteArrayView piece = channel.nextInput(); !piece.isEmpty();
             piece = channel.nextInput()) {
            if (!channel.takeOutput(piece))
                return makeError(channel.sinkError());
        }
        if (archive.hasReadError())
            return makeError(zipmessage::unreadable());
        return {};
    }

    // Some writers give an empty entry no deflate stream at all.
    if (entry.compressedSize == 0 && entry.uncompressedSize == 0)
        return {};
    InflateLimits limits;
    limits.maxOutput = qint64(std::min<quint64>(entry.uncompressedSize, kMaxOffset));
    const InflateOutcome outcome = inflateStream(channel, limits);
    switch (outcome.end) {
    case InflateEnd::Complete:
        if (quint64(outcome.outputSize) < entry.uncompressedSize)
            return makeError(zipmessage::shorterThanDeclared(entry.name));
        return {};
    case InflateEnd::OutputFull:
        return makeError(zipmessage::longerThanDeclared(entry.name));
    case InflateEnd::Stopped:
        return makeError(channel.sinkError());
    case InflateEnd::LimitReached:
    case InflateEnd::Corrupt:
        break;
    }
    return makeError(archive.hasReadError() ? zipmessage::unreadable()
                                            : zipmessage::notDecompressible(entry.name));
}

} // namespace

Result<QList<ZipDirectoryEntry>> readZipDirectory(ZipSource &archive)
{
    const Result<DirectoryLocation> location = locateDirectory(archive);
    if (!location)
        return makeError(location.error());
    if (location->offset > quint64(location->end))
        return makeError(zipmessage::headerPastEnd());
    const auto start = qint64(location->offset);
    const std::optional<QByteArrayView> directory = archive.read(start, location->end - start);
    if (!directory)
        return makeError(zipmessage::unreadable());

    QList<ZipDirectoryEntry> entries;
    QSet<QString> names;
    // Every header takes at least 46 bytes, so a count beyond what fits is not reserved for.
    const auto fitting = quint64(directory->size() / kCentralHeaderSize);
    entries.reserve(qsizetype(std::min(location->count, fitting)));
    names.reserve(qsizetype(std::min(location->count, fitting)));
    qsizetype pos = 0;
    for (quint64 i = 0; i < location->count; ++i) {
        if (directory->size() - pos < kCentralHeaderSize)
            return makeError(zipmessage::headerPastEnd());
        if (u32At(*directory, pos) != kCentralHeaderSignature)
            return makeError(zipmessage::headerWithoutSignature());
        const qsizetype nameLength = u16At(*directory, pos + 28);
        const qsizetype extraLength = u16At(*directory, pos + 30);
        const qsizetype commentLength = u16At(*directory, pos + 32);
        const qsizetype recordSize = kCentralHeaderSize + nameLength + extraLength + commentLength;
        if (directory->size() - pos < recordSize)
            return makeError(zipmessage::headerPastEnd());

        Result<ZipDirectoryEntry> entry = parseCentralHeader(directory->sliced(pos, recordSize),
                                                             nameLength, extraLength);
        if (!entry)
            return makeError(entry.error());
        if (names.contains(entry->name))
            return makeError(zipmessage::duplicateEntry(entry->name));
        names.insert(entry->name);
        entries.append(std::move(entry).value());
        pos += recordSize;
    }
    return entries;
}

Result<QList<ZipDirectoryEntry>> readZipDirectory(QByteArrayView archive)
{
    ZipSource source(archive);
    return readZipDirectory(source);
}

Result<void> readZipEntry(ZipSource &archive, const ZipDirectoryEntry &entry,
                          const ZipEntrySink &sink)
{
    if (entry.method != kZipStored && entry.method != kZipDeflated)
        return makeError(zipmessage::unsupportedMethod(entry.name));
    if (entry.flags & kFlagEncrypted)
        return makeError(zipmessage::encrypted(entry.name));
    const Result<qint64> dataStart = locateData(archive, entry);
    if (!dataStart)
        return makeError(dataStart.error());

    EntryChannel channel(archive, *dataStart, qint64(entry.compressedSize), sink);
    if (const Result<void> transferred = transferData(channel, entry, archive); !transferred)
        return transferred;
    if (channel.crc() != entry.crc32)
        return makeError(zipmessage::checksumMismatch(entry.name));
    return {};
}

Result<QByteArray> extractZipEntry(QByteArrayView archive, const ZipDirectoryEntry &entry)
{
    if (entry.uncompressedSize > quint64(kInflateOutputLimit))
        return makeError(zipmessage::tooLargeForMemory(entry.name));
    QByteArray data;
    // Only a stored entry's size is known to be backed by data; a deflated one grows as it is
    // decoded, so a false size cannot make it take memory.
    if (entry.method == kZipStored && entry.compressedSize <= quint64(archive.size()))
        data.reserve(qsizetype(entry.compressedSize));
    ZipSource source(archive);
    const Result<void> read = readZipEntry(source, entry, [&data](QByteArrayView piece) {
        data.append(piece);
        return Result<void>();
    });
    if (!read)
        return makeError(read.error());
    return data;
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
    return makeError(zipmessage::missingEntry(name.toString()));
}

} // namespace fb::app
