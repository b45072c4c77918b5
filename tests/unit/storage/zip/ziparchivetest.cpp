#include "storage/zip/crc32.h"
#include "storage/zip/inflate.h"
#include "storage/zip/zipreader.h"
#include "storage/zip/zipwriter.h"
#include "support/printers.h"

#include <QFile>
#include <QRandomGenerator>
#include <QtEndian>

#include <gtest/gtest.h>

#include <functional>

using namespace Qt::StringLiterals;
using fb::app::extractZipEntry;
using fb::app::kInflateBlockOverrun;
using fb::app::kInflateOutputLimit;
using fb::app::readZipDirectory;
using fb::app::writeZip;
using fb::app::ZipEntry;

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

TEST(ZipReader, FailsToExtractDamagedOrUnknownEntries)
{
    // The data's first bits read as a deflate block of the reserved type.
    const QByteArray archive = writeZip({{u"a.json"_s, "\x07{}"}});
    const fb::app::ZipDirectoryEntry good = readZipDirectory(archive)->at(0);
    struct Case
    {
        const char *name;
        std::function<void(fb::app::ZipDirectoryEntry &, QByteArray &)> damage;
        QString error;
    };
    const Case cases[] = {
        {"method 12", [](auto &e, auto &) { e.method = 12; },
         u"An entry uses a compression method other than stored or deflate."_s},
        {"header offset past the end", [](auto &e, auto &) { e.localHeaderOffset = 200; },
         u"A local header runs past the end of the archive."_s},
        {"bad local header signature", [](auto &, auto &a) { a[0] = 'X'; },
         u"A local header has no signature."_s},
        {"data running past the end", [](auto &e, auto &) { e.compressedSize = 0xFFFFFFFF; },
         u"An entry's data runs past the end of the archive."_s},
        {"extra field running past the end",
         [](auto &, auto &a) { qToLittleEndian<quint16>(0xFFFF, a.data() + 28); },
         u"An entry's data runs past the end of the archive."_s},
        {"corrupt deflate stream", [](auto &e, auto &) { e.method = 8; },
         u"The deflate stream uses the reserved block type."_s},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        fb::app::ZipDirectoryEntry entry = good;
        QByteArray damaged = archive;
        c.damage(entry, damaged);
        const auto result = extractZipEntry(damaged, entry);
        ASSERT_FALSE(result);
        EXPECT_EQ(result.error(), c.error);
    }
    EXPECT_FALSE(extractZipEntry(archive, u"missing.json"));
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
