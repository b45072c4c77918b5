#include "storage/sha256.h"
#include "storage/zip/crc32.h"
#include "storage/zip/inflate.h"
#include "storage/zip/zipreader.h"
#include "storage/zip/zipsource.h"
#include "storage/zip/zipwriter.h"
#include "support/printers.h"
#include "unit/storage/zip/ziptestutil.h"

#include <QFile>
#include <QRandomGenerator>
#include <QtEndian>

#include <gtest/gtest.h>

#include <functional>
#include <vector>

using namespace Qt::StringLiterals;
using fb::app::extractZipEntry;
using fb::app::kInflateBlockOverrun;
using fb::app::kInflateOutputLimit;
using fb::app::readZipDirectory;
using fb::app::writeZip;
using fb::app::ZipEntry;
using fb::ziptest::declare;
using fb::ziptest::readTestFile;

namespace {

const QList<ZipEntry> &sampleEntries()
{
    static const QList<ZipEntry> entries = {
        {u"project.json"_s, "{\"name\": \"Harbour\"}"},
        {u"objects/"_s, {}},
        {u"objects/empty.json"_s, {}},
        {u"objects/k\u00fcste-\u6e2f.json"_s, QByteArray(5000, 'k')},
    };
    return entries;
}

qsizetype centralDirectoryOffset(const QByteArray &archive)
{
    return qFromLittleEndian<quint32>(archive.constData() + archive.size() - 6);
}

TEST(Crc32, MatchesKnownValues)
{
    EXPECT_EQ(fb::app::crc32(""), 0u);
    EXPECT_EQ(fb::app::crc32("a"), 0xE8B7BE43u);
    EXPECT_EQ(fb::app::crc32("123456789"), 0xCBF43926u);
    EXPECT_EQ(fb::app::crc32("6789", fb::app::crc32("12345")), 0xCBF43926u);
}

// The CRC is computed eight bytes at a time with a byte-wise tail; every length and start
// offset within a few words meets each way a buffer can split into words and tail.
TEST(Crc32, AgreesWithTheBitwiseDefinitionForEveryLengthAndAlignment)
{
    const auto bitwise = [](QByteArrayView data, quint32 previous) {
        quint32 c = ~previous;
        for (const char byte : data) {
            c ^= quint8(byte);
            for (int k = 0; k < 8; ++k)
                c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
        }
        return ~c;
    };
    QRandomGenerator random(31);
    std::vector<char> buffer(100);
    for (char &byte : buffer)
        byte = char(random.bounded(256));
    for (qsizetype offset = 0; offset < 8; ++offset) {
        for (qsizetype length = 0; offset + length <= qsizetype(buffer.size()); ++length) {
            const QByteArrayView data(buffer.data() + offset, length);
            ASSERT_EQ(fb::app::crc32(data, 0x12345678u), bitwise(data, 0x12345678u))
                << offset << " " << length;
        }
    }
}

TEST(ZipWriter, WritesFixedRecordsThatRepeatByteForByte)
{
    struct Case
    {
        const char *name;
        QList<ZipEntry> entries;
        const char *hex; // records of fields in the order they are written
    };
    const Case cases[] = {
        {"no entries", {}, "504b0506 0000 0000 0000 0000 00000000 00000000 0000"},
        {"one entry",
         {{u"a.txt"_s, "abc"}},
         "504b0304 1400 0000 0000 0000 2100 c2412435 03000000 03000000 0500 0000 612e747874 616263"
         "504b0102 1400 1400 0000 0000 0000 2100 c2412435 03000000 03000000 0500 0000 0000 0000"
         "    0000 00000000 00000000 612e747874"
         "504b0506 0000 0000 0100 0100 33000000 26000000 0000"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(writeZip(c.entries).toHex(), QByteArray::fromHex(c.hex).toHex());
    }
    EXPECT_EQ(writeZip(sampleEntries()), writeZip(sampleEntries()));
}

// Saved bundles are compared byte for byte with freshly packed ones, so archives that need no
// ZIP64 must keep the exact bytes of the writer that had none. The digest was taken from that
// writer's output for these entries.
TEST(ZipWriter, WritesTheSameBytesAsTheWriterWithoutZip64)
{
    QByteArray binary;
    for (int i = 0; i < 76800; ++i)
        binary.append(char(i * 7 % 256));
    const QList<ZipEntry> entries = {
        {u"project.json"_s, "{\"name\": \"Harbour\"}"},
        {u"objects/"_s, {}},
        {u"objects/empty.json"_s, {}},
        {u"objects/k\u00fcste-\u6e2f.json"_s, QByteArray(5000, 'k')},
        {u"media/map.png"_s, binary, fb::app::crc32(binary)},
        {QString(300, u'n') + u".json"_s, "{}"},
    };
    const QByteArray archive = writeZip(entries);
    EXPECT_EQ(archive.size(), 83057);
    EXPECT_EQ(fb::app::sha256Hex(archive),
              u"7919ec0c168b3da2d963887db9fcca6b94ebf24b9acce5fbf3f0269f7f12ec7d"_s);
}

TEST(ZipReader, ReadsBackWhatTheWriterWrote)
{
    const QByteArray archive = writeZip(sampleEntries());
    const auto directory = readZipDirectory(archive);
    ASSERT_TRUE(directory) << directory.error().toStdString();
    ASSERT_EQ(directory->size(), sampleEntries().size());
    for (qsizetype i = 0; i < directory->size(); ++i) {
        const ZipEntry &written = sampleEntries().at(i);
        const fb::app::ZipDirectoryEntry &read = directory->at(i);
        SCOPED_TRACE(written.name.toStdString());
        EXPECT_EQ(read.name, written.name);
        EXPECT_EQ(read.method, fb::app::kZipStored);
        EXPECT_EQ(read.compressedSize, quint32(written.data.size()));
        EXPECT_EQ(read.uncompressedSize, quint32(written.data.size()));
        EXPECT_EQ(read.crc32, fb::app::crc32(written.data));
        const auto data = extractZipEntry(archive, read);
        ASSERT_TRUE(data);
        EXPECT_EQ(*data, written.data);
    }
}

TEST(ZipReader, CutsLongNamesToTheLargestLength)
{
    const QString longName(70000, u'n');
    const auto directory = readZipDirectory(writeZip({{longName, "x"}}));
    ASSERT_TRUE(directory);
    EXPECT_EQ(directory->at(0).name, longName.left(65535));
}

TEST(ZipReader, ExtractsDeflatedEntriesOfAnotherWriter)
{
    QFile zip(QStringLiteral(FB_TEST_DATA_DIR "/zip/deflated.zip"));
    QFile text(QStringLiteral(FB_TEST_DATA_DIR "/zip/text.txt"));
    ASSERT_TRUE(zip.open(QIODevice::ReadOnly) && text.open(QIODevice::ReadOnly));
    const QByteArray archive = zip.readAll();

    const auto directory = readZipDirectory(archive);
    ASSERT_TRUE(directory);
    ASSERT_EQ(directory->size(), 3);
    EXPECT_EQ(directory->at(1).method, fb::app::kZipDeflated);
    const auto data = extractZipEntry(archive, u"notes/text.txt");
    ASSERT_TRUE(data) << data.error().toStdString();
    EXPECT_EQ(*data, text.readAll());
    const auto empty = extractZipEntry(archive, u"empty.txt");
    ASSERT_TRUE(empty);
    EXPECT_TRUE(empty->isEmpty());
}

// zip64.zip was made once with Python's zipfile module. Lowering its ZIP64 threshold makes it
// write ZIP64 records for a small archive:
//
//   zipfile.ZIP64_LIMIT = 100
//   with zipfile.ZipFile('zip64.zip', 'w') as z:
//       for name, data, method in [('project.json', b'{"name": "Harbour"}', ZIP_STORED),
//                                  ('notes/text.txt', text_txt, ZIP_DEFLATED),
//                                  ('media/zeros.bin', bytes(1000), ZIP_STORED)]:
//           info = zipfile.ZipInfo(name, (2024, 6, 11, 12, 0, 0))
//           info.compress_type = method
//           with z.open(info, 'w', force_zip64=True) as f:
//               f.write(data)
//
// Every local header gives its sizes in a ZIP64 extra field, the central headers do so for the
// sizes and offsets above 100, and the directory is found through the ZIP64 end record.
TEST(ZipReader, ReadsAZip64ArchiveOfAnotherWriter)
{
    const QByteArray archive = readTestFile("zip64.zip");
    const QByteArray text = readTestFile("text.txt");
    struct Case
    {
        QString name;
        quint16 method;
        quint64 compressedSize;
        quint64 offset;
        QByteArray data;
    };
    const Case cases[] = {
        {u"project.json"_s, fb::app::kZipStored, 19, 0, "{\"name\": \"Harbour\"}"},
        {u"notes/text.txt"_s, fb::app::kZipDeflated, 934, 81, text},
        {u"media/zeros.bin"_s, fb::app::kZipStored, 1000, 1079, QByteArray(1000, '\0')},
    };
    const auto directory = readZipDirectory(archive);
    ASSERT_TRUE(directory) << directory.error().toStdString();
    ASSERT_EQ(directory->size(), std::size(cases));
    for (size_t i = 0; i < std::size(cases); ++i) {
        const Case &c = cases[i];
        const fb::app::ZipDirectoryEntry &entry = directory->at(qsizetype(i));
        SCOPED_TRACE(c.name.toStdString());
        EXPECT_EQ(entry.name, c.name);
        EXPECT_EQ(entry.method, c.method);
        EXPECT_EQ(entry.compressedSize, c.compressedSize);
        EXPECT_EQ(entry.uncompressedSize, quint64(c.data.size()));
        EXPECT_EQ(entry.localHeaderOffset, c.offset);
        EXPECT_EQ(entry.crc32, fb::app::crc32(c.data));
        const auto data = extractZipEntry(archive, entry);
        ASSERT_TRUE(data) << data.error().toStdString();
        EXPECT_EQ(*data, c.data);
    }
}

TEST(ZipReader, FindsTheEndRecordBehindTheLongestComment)
{
    struct Case
    {
        const char *name;
        qsizetype commentSize;
        bool readable;
    };
    const Case cases[] = {{"no comment", 0, true},
                          {"longest comment", 65535, true},
                          {"comment too long to search", 65536, false}};
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        QByteArray archive = writeZip(sampleEntries());
        qToLittleEndian<quint16>(quint16(c.commentSize), archive.data() + archive.size() - 2);
        archive.append(QByteArray(c.commentSize, 'c'));
        const auto directory = readZipDirectory(archive);
        EXPECT_EQ(bool(directory), c.readable);
        if (directory) {
            EXPECT_EQ(directory->size(), sampleEntries().size());
        }
    }
}

TEST(ZipReader, FailsOnDamagedDirectories)
{
    const QByteArray archive = writeZip(sampleEntries());
    const qsizetype directory = centralDirectoryOffset(archive);
    const qsizetype end = archive.size() - 22;
    struct Case
    {
        const char *name;
        std::function<void(QByteArray &)> damage;
        QString error;
    };
    const Case cases[] = {
        {"shorter than an end record", [](QByteArray &a) { a = a.right(21); },
         u"The archive is too short to be a ZIP archive."_s},
        {"truncated", [](QByteArray &a) { a.chop(1); },
         u"The archive has no end of central directory record."_s},
        {"bad central header signature", [&](QByteArray &a) { a[directory] = 'X'; },
         u"A central directory header has no signature."_s},
        {"more entries than headers",
         [&](QByteArray &a) { qToLittleEndian<quint16>(9, a.data() + end + 10); },
         u"A central directory header runs past the end of the archive."_s},
        {"directory offset past the end",
         [&](QByteArray &a) { qToLittleEndian<quint32>(0xFFFFFFF0, a.data() + end + 16); },
         u"A central directory header runs past the end of the archive."_s},
        {"name running past the end",
         [&](QByteArray &a) { qToLittleEndian<quint16>(0xFFFF, a.data() + directory + 28); },
         u"A central directory header runs past the end of the archive."_s},
        {"two entries of one name",
         [](QByteArray &a) {
             a = writeZip({{u"objects/a.json"_s, "a"}, {u"objects/a.json"_s, "b"}});
         },
         u"The archive holds two entries named \"objects/a.json\"."_s},
        {"ZIP64 marker without ZIP64 field",
         [&](QByteArray &a) { qToLittleEndian<quint32>(0xFFFFFFFF, a.data() + directory + 20); },
         u"The archive's directory lacks the ZIP64 sizes of the entry \"project.json\"; the "
         u"archive is damaged."_s},
        {"damaged ZIP64 end record",
         [](QByteArray &a) {
             a = readTestFile("zip64.zip");
             a[a.lastIndexOf("PK\x06\x06") + 3] = 'X';
         },
         u"The archive's ZIP64 end of central directory record is damaged."_s},
        {"ZIP64 locator pointing past its end record",
         [](QByteArray &a) {
             a = readTestFile("zip64.zip");
             qToLittleEndian<quint64>(a.size(), a.data() + a.lastIndexOf("PK\x06\x07") + 8);
         },
         u"The archive's ZIP64 end of central directory record is damaged."_s},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        QByteArray damaged = archive;
        c.damage(damaged);
        const auto result = readZipDirectory(damaged);
        ASSERT_FALSE(result);
        EXPECT_EQ(result.error(), c.error);
    }
}

// Messages name the entry since the rewording that came with checksums; before, they were
// short sentences for logs that did not.
TEST(ZipReader, FailsToExtractDamagedOrUnknownEntries)
{
    // The data's first bits read as a deflate block of the reserved type.
    const QByteArray archive = writeZip({{u"a.json"_s, "\x07{}"}});
    const fb::app::ZipDirectoryEntry good = readZipDirectory(archive)->at(0);
    const QString damaged = u"The archive's entry \"a.json\" %1; the archive is damaged."_s;
    struct Case
    {
        const char *name;
        std::function<void(fb::app::ZipDirectoryEntry &, QByteArray &)> damage;
        QString error;
    };
    const Case cases[] = {
        {"method 12", [](auto &e, auto &) { e.method = 12; },
         u"The archive's entry \"a.json\" uses a compression method other than stored or "
         u"deflate; it cannot be read."_s},
        {"encrypted", [](auto &e, auto &) { e.flags = 1; },
         u"The archive's entry \"a.json\" is encrypted; it cannot be read."_s},
        {"larger than 64 MiB", [](auto &e, auto &) { e.uncompressedSize = 67108865; },
         u"The archive's entry \"a.json\" is larger than 64 MiB, too large to be read into "
         u"memory."_s},
        {"header offset past the end", [](auto &e, auto &) { e.localHeaderOffset = 200; },
         damaged.arg(u"runs past the end of the archive"_s)},
        {"bad local header signature", [](auto &, auto &a) { a[0] = 'X'; },
         damaged.arg(u"has a damaged header"_s)},
        {"data running past the end", [](auto &e, auto &) { e.compressedSize = 0xFFFFFFFF; },
         damaged.arg(u"runs past the end of the archive"_s)},
        {"extra field running past the end",
         [](auto &, auto &a) { qToLittleEndian<quint16>(0xFFFF, a.data() + 28); },
         damaged.arg(u"runs past the end of the archive"_s)},
        {"local header with another CRC", [](auto &, auto &a) { a[14] = char(a[14] ^ 1); },
         damaged.arg(u"has a header that disagrees with the archive's directory"_s)},
        {"local header with another size",
         [](auto &, auto &a) { qToLittleEndian<quint32>(2, a.data() + 22); },
         damaged.arg(u"has a header that disagrees with the archive's directory"_s)},
        {"corrupt deflate stream", [](auto &e, auto &) { e.method = 8; },
         damaged.arg(u"cannot be decompressed"_s)},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        fb::app::ZipDirectoryEntry entry = good;
        QByteArray bytes = archive;
        c.damage(entry, bytes);
        const auto result = extractZipEntry(bytes, entry);
        ASSERT_FALSE(result);
        EXPECT_EQ(result.error(), c.error);
    }
    EXPECT_EQ(extractZipEntry(archive, u"missing.json").error(),
              u"The archive has no entry named \"missing.json\"."_s);
}

TEST(ZipReader, ChecksTheSizeAndChecksumOfEveryEntry)
{
    const QByteArray text = readTestFile("text.txt");
    const auto textSize = quint32(text.size());
    const quint32 textCrc = fb::app::crc32(text);
    const QByteArray deflated = readTestFile("text.deflate");
    const auto stored = [](const QByteArray &data, quint32 crc) {
        return writeZip({{u"objects/a.json"_s, data, crc}});
    };
    const auto asDeflated = [&](const QByteArray &stream, fb::ziptest::Declared declared) {
        QByteArray archive = stored(stream, 0);
        declare(archive, 0, declared);
        return archive;
    };
    const QString damaged = u"The archive's entry \"objects/a.json\" %1; the archive is damaged."_s;
    struct Case
    {
        const char *name;
        QByteArray archive;
        QString error; // empty when the entry reads as `text`
    };
    const Case cases[] = {
        {"stored", stored(text, textCrc), {}},
        {"deflated", asDeflated(deflated, {8, textCrc, textSize}), {}},
        {"stored with a wrong checksum", stored(text, textCrc ^ 1),
         damaged.arg(u"does not match its checksum"_s)},
        {"deflated with a wrong checksum", asDeflated(deflated, {8, textCrc ^ 0x100, textSize}),
         damaged.arg(u"does not match its checksum"_s)},
        {"deflated, decoding to more than declared",
         asDeflated(deflated, {8, textCrc, textSize - 1}),
         damaged.arg(u"holds more data than the archive's directory declares"_s)},
        {"deflated, decoding to less than declared",
         asDeflated(deflated, {8, textCrc, textSize + 1}),
         damaged.arg(u"holds less data than the archive's directory declares"_s)},
        {"stored, more data than declared", asDeflated(text, {0, textCrc, textSize - 1}),
         damaged.arg(u"holds more data than the archive's directory declares"_s)},
        {"stored, less data than declared", asDeflated(text, {0, textCrc, textSize + 1}),
         damaged.arg(u"holds less data than the archive's directory declares"_s)},
        {"deflate stream cut short", asDeflated(deflated.chopped(1), {8, textCrc, textSize}),
         damaged.arg(u"cannot be decompressed"_s)},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        const auto data = extractZipEntry(c.archive, u"objects/a.json");
        if (c.error.isEmpty()) {
            ASSERT_TRUE(data) << data.error().toStdString();
            EXPECT_EQ(*data, text);
        } else {
            ASSERT_FALSE(data);
            EXPECT_EQ(data.error(), c.error);
        }
    }
}

// Before sizes were checked, a deflate bomb was decoded up to the in-memory limit whatever its
// entry declared. Now decoding stops at the declared size.
TEST(ZipReader, StopsDecodingADeflateBombAtItsDeclaredSize)
{
    // About 100 MiB of zeros in blocks of 258,000 bytes, declared as 1 MiB.
    QByteArray archive = writeZip({{u"bomb.bin"_s, fb::ziptest::zeroBomb(400, 1000)}});
    declare(archive, 0, {fb::app::kZipDeflated, 0, 1 << 20});
    fb::app::ZipSource source(archive);
    qint64 received = 0;
    const auto read = fb::app::readZipEntry(source, readZipDirectory(archive)->at(0),
                                            [&received](QByteArrayView piece) {
                                                received += piece.size();
                                                return fb::Result<void>();
                                            });
    ASSERT_FALSE(read);
    EXPECT_EQ(read.error(), u"The archive's entry \"bomb.bin\" holds more data than the "
                            u"archive's directory declares; the archive is damaged."_s);
    EXPECT_LE(received, 1 << 20);
}

TEST(ZipReader, SurvivesDamagedArchives)
{
    const QByteArray archive = writeZip(sampleEntries());
    QRandomGenerator random(7);
    for (int i = 0; i < 3000; ++i) {
        QByteArray damaged = archive;
        for (int flips = 1 + random.bounded(6); flips > 0; --flips)
            damaged[random.bounded(damaged.size())] = char(random.bounded(256));
        const auto directory = readZipDirectory(damaged);
        if (!directory)
            continue;
        for (const fb::app::ZipDirectoryEntry &entry : *directory) {
            const auto data = extractZipEntry(damaged, entry);
            if (data) {
                ASSERT_LE(data->size(), kInflateOutputLimit + kInflateBlockOverrun) << i;
            }
        }
    }
}

} // namespace
