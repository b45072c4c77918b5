// Bundles beyond the sizes a plain ZIP archive holds or a server should keep in memory: a large
// media file and more than 65,535 entries survive an edit whole.

#include "storage/folderarchive.h"
#include "storage/zip/crc32.h"
#include "storage/zip/zipreader.h"
#include "storage/zip/zipsource.h"
#include "storage/zip/zipwriter.h"
#include "support/serverprocess.h"
#include "unit/storage/zip/ziptestutil.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

using fb::test::ServerProcess;

namespace {

QList<fb::app::ZipEntry> novelEntries()
{
    QList<fb::app::ZipEntry> entries;
    const QDir novel(QStringLiteral(FB_TEST_DATA_DIR "/projects/novel"));
    for (const fb::app::FolderFile &file : fb::app::listFolderFiles(novel.path())) {
        QFile in(file.absolutePath);
        EXPECT_TRUE(in.open(QIODevice::ReadOnly));
        entries.append({file.relativePath, in.readAll()});
    }
    return entries;
}

// The directory of the bundle on disk, read from the file piece by piece.
QList<fb::app::ZipDirectoryEntry> directoryOf(const QString &bundle)
{
    QFile file(bundle);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    fb::app::ZipSource source(&file);
    const auto directory = fb::app::readZipDirectory(source);
    EXPECT_TRUE(directory) << directory.error().toStdString();
    return directory ? *directory : QList<fb::app::ZipDirectoryEntry>();
}

qint64 peakMemoryKiB(qint64 pid)
{
    QFile status(u"/proc/%1/status"_s.arg(pid));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toLongLong();
    }
    return -1;
}

TEST(LargeBundles, KeepAHundredMegabyteMediaFileWholeThroughAnEdit)
{
    // 100,104,001 zero bytes, deflated to well under a megabyte, as a desktop application's
    // compressing ZIP writer would store a blank film.
    constexpr int blocks = 388;
    constexpr int runs = 1000;
    constexpr qint64 size = 1 + qint64(258) * blocks * runs;
    QList<fb::app::ZipEntry> entries = novelEntries();
    entries.append({u"media/blank.mov"_s, fb::ziptest::zeroBomb(blocks, runs)});
    QByteArray archive = fb::app::writeZip(entries);
    quint32 crc = 0;
    const QByteArray zeros(1 << 20, '\0');
    for (qint64 done = 0; done < size; done += zeros.size())
        crc = fb::app::crc32(QByteArrayView(zeros).first(
                                 std::min<qint64>(zeros.size(), size - done)),
                             crc);
    fb::ziptest::declare(archive, int(entries.size() - 1),
                         {fb::app::kZipDeflated, crc, quint32(size)});

    QTemporaryDir root;
    const QString bundle = root.filePath(u"film.fablery"_s);
    const QString plainBundle = root.filePath(u"plain.fablery"_s);
    for (const auto &[path, bytes] :
         {std::pair{bundle, archive}, std::pair{plainBundle, fb::app::writeZip(novelEntries())}}) {
        QFile out(path);
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(bytes);
    }

    // The peak memory of a server that opens a bundle and creates a document in it. Under the
    // address sanitizer freed memory is held back for a while to catch its reuse; that would
    // count every piece the film passes through as still in use.
    const auto peakOfAnEdit = [](const QString &path) -> qint64 {
        const QByteArray sanitizerOptions = qgetenv("ASAN_OPTIONS");
        qputenv("ASAN_OPTIONS", sanitizerOptions + (sanitizerOptions.isEmpty() ? "" : ":")
                                    + "quarantine_size_mb=0");
        ServerProcess server({path});
        qputenv("ASAN_OPTIONS", sanitizerOptions);
        const auto created = server.call(u"create_document"_s, {{u"title"_s, u"Reel"_s}});
        EXPECT_FALSE(created.isError) << created.text.toStdString();
        const qint64 peak = peakMemoryKiB(server.processId());
        EXPECT_EQ(server.finish(), 0);
        return peak;
    };
    const qint64 plainPeak = peakOfAnEdit(plainBundle);
    const qint64 filmPeak = peakOfAnEdit(bundle);
    // The film is unpacked and packed again in pieces, never held whole: it costs the server a
    // small part of its size.
    EXPECT_GT(plainPeak, 0);
    EXPECT_LT(filmPeak - plainPeak, size / 1024 / 4)
        << "peak memory in KiB: " << filmPeak << " against " << plainPeak;

    bool found = false;
    for (const fb::app::ZipDirectoryEntry &entry : directoryOf(bundle)) {
        if (entry.name != u"media/blank.mov"_s)
            continue;
        found = true;
        EXPECT_EQ(entry.uncompressedSize, quint64(size));
        EXPECT_EQ(entry.crc32, crc);
    }
    EXPECT_TRUE(found);
}

TEST(LargeBundles, HoldMoreThanSixtyFiveThousandEntries)
{
    QList<fb::app::ZipEntry> entries = novelEntries();
    for (int n = 0; n < 70000; ++n)
        entries.append(
            {u"research/clip-%1.txt"_s.arg(n, 5, 10, QChar(u'0')), QByteArray::number(n)});
    QTemporaryDir root;
    const QString bundle = root.filePath(u"archive.fablery"_s);
    QFile out(bundle);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    out.write(fb::app::writeZip(entries));
    out.close();

    {
        ServerProcess server({bundle});
        const auto created = server.call(u"create_document"_s, {{u"title"_s, u"Index"_s}});
        ASSERT_FALSE(created.isError) << created.text.toStdString();
        EXPECT_EQ(server.finish(60000), 0);
    }
    EXPECT_EQ(directoryOf(bundle).size(), entries.size() + 1);
    // The server reads its own bundle back.
    ServerProcess again({bundle});
    EXPECT_FALSE(again.call(u"get_document"_s, {{u"title"_s, u"Index"_s}}).isError);
    EXPECT_EQ(again.finish(60000), 0);
}

} // namespace
