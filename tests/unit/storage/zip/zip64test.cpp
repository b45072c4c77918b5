#include "storage/zip/crc32.h"
#include "storage/zip/zipformat.h"
#include "storage/zip/zipreader.h"
#include "storage/zip/zipsource.h"
#include "storage/zip/zipwriter.h"
#include "support/printers.h"

#include <QBuffer>
#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using fb::app::readZipDirectory;
using fb::app::writeZip;
using fb::app::ZipEntry;
namespace zipformat = fb::app::zipformat;

namespace {

constexpr quint64 kGiB = quint64(1) << 30;

TEST(Zip64, RoundTripsSeventyThousandEntries)
{
    QList<ZipEntry> entries;
    for (int i = 0; i < 70000; ++i)
        entries.append({u"objects/%1.json"_s.arg(i), QByteArray::number(i)});
    const QByteArray archive = writeZip(entries);

    // The classic end record counts to 65,535 at most; the ZIP64 end record has the real count.
    const qsizetype end = archive.size() - zipformat::kEndRecordSize;
    EXPECT_EQ(qFromLittleEndian<quint16>(archive.constData() + end + 10), 0xFFFF);
    EXPECT_EQ(qFromLittleEndian<quint32>(archive.constData() + end - zipformat::kZip64LocatorSize),
              zipformat::kZip64LocatorSignature);

    const auto directory = readZipDirectory(archive);
    ASSERT_TRUE(directory) << directory.error().toStdString();
    ASSERT_EQ(directory->size(), entries.size());
    for (qsizetype i = 0; i < entries.size(); ++i)
        ASSERT_EQ(directory->at(i).name, entries.at(i).name);
    for (const qsizetype i : {0, 65534, 65535, 65536, 69999}) {
        SCOPED_TRACE(i);
        const auto data = fb::app::extractZipEntry(archive, directory->at(i));
        ASSERT_TRUE(data) << data.error().toStdString();
        EXPECT_EQ(*data, entries.at(i).data);
    }

    QBuffer streamed;
    streamed.open(QIODevice::WriteOnly);
    fb::app::ZipStreamWriter writer(&streamed);
    for (const ZipEntry &entry : std::as_const(entries))
        ASSERT_TRUE(writer.addBytes(entry.name, entry.data));
    ASSERT_TRUE(writer.finish());
    EXPECT_TRUE(streamed.data() == archive);
}

// Values from 0xFFFFFFFF up go to the ZIP64 extra field; smaller ones keep the plain records.
TEST(Zip64, WritesZip64FieldsOnlyForTheValuesThatNeedThem)
{
    struct Case
    {
        const char *name;
        quint64 size;
        quint64 offset;
        quint16 centralExtra; // the size of the central header's extra field
        quint16 localExtra;
    };
    const Case cases[] = {
        {"small", 5, 7, 0, 0},
        {"just below the marker", 0xFFFFFFFE, 0xFFFFFFFE, 0, 0},
        {"size equal to the marker", 0xFFFFFFFF, 0, 20, 20},
        {"offset equal to the marker", 1, 0xFFFFFFFF, 12, 0},
        {"both beyond 4 GiB", 5 * kGiB, 6 * kGiB, 28, 20},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        const zipformat::StoredEntryRecord record{"big.bin", 0x1234, c.size, c.offset};
        const QByteArray local = zipformat::localHeader(record);
        EXPECT_EQ(qFromLittleEndian<quint16>(local.constData() + 28), c.localExtra);
        EXPECT_EQ(qFromLittleEndian<quint16>(local.constData() + 4), c.localExtra ? 45 : 20);

        // A directory of this one header reads back with the full values.
        const QByteArray central = zipformat::centralHeader(record);
        EXPECT_EQ(qFromLittleEndian<quint16>(central.constData() + 30), c.centralExtra);
        const QByteArray archive = central + zipformat::directoryEnd(1, 0, central.size());
        const auto directory = readZipDirectory(archive);
        ASSERT_TRUE(directory) << directory.error().toStdString();
        EXPECT_EQ(directory->at(0).compressedSize, c.size);
        EXPECT_EQ(directory->at(0).uncompressedSize, c.size);
        EXPECT_EQ(directory->at(0).localHeaderOffset, c.offset);
        EXPECT_EQ(directory->at(0).crc32, 0x1234u);
    }

    const qsizetype plain = zipformat::kEndRecordSize;
    const qsizetype withZip64 = plain + zipformat::kZip64EndRecordSize
                                + zipformat::kZip64LocatorSize;
    EXPECT_EQ(zipformat::directoryEnd(65535, 100, 100).size(), plain);
    EXPECT_EQ(zipformat::directoryEnd(65536, 100, 100).size(), withZip64);
    EXPECT_EQ(zipformat::directoryEnd(1, 0xFFFFFFFF, 100).size(), withZip64);
    EXPECT_EQ(zipformat::directoryEnd(1, 100, 0xFFFFFFFF).size(), withZip64);
}

// A sparse file puts an entry and the directory past 4 GiB without using the disk space.
TEST(Zip64, ReadsAnEntryBeyondFourGibibytesFromAFile)
{
    QTemporaryDir dir;
    QFile file(dir.filePath(u"far.zip"_s));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    const quint64 start = 5 * kGiB;
    if (!file.resize(qint64(start)))
        GTEST_SKIP() << "this file system cannot hold a sparse file of 5 GiB";

    const zipformat::StoredEntryRecord record{"late.txt", fb::app::crc32("late"), 4, start};
    const QByteArray central = zipformat::centralHeader(record);
    const QByteArray local = zipformat::localHeader(record);
    ASSERT_TRUE(file.seek(qint64(start)));
    file.write(local + "late" + central
               + zipformat::directoryEnd(1, start + quint64(local.size()) + 4, central.size()));
    ASSERT_TRUE(file.flush());

    fb::app::ZipSource source(&file);
    const auto directory = readZipDirectory(source);
    ASSERT_TRUE(directory) << directory.error().toStdString();
    ASSERT_EQ(directory->size(), 1);
    EXPECT_EQ(directory->at(0).localHeaderOffset, start);
    QByteArray data;
    const auto collect = [&data](QByteArrayView piece) {
        data.append(piece);
        return fb::Result<void>();
    };
    const auto read = fb::app::readZipEntry(source, directory->at(0), collect);
    ASSERT_TRUE(read) << read.error().toStdString();
    EXPECT_EQ(data, "late");
}

} // namespace
