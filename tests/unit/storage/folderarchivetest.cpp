#include "storage/folderarchive.h"

#include "storage/zip/crc32.h"
#include "storage/zip/zipformat.h"
#include "storage/zip/zipreader.h"
#include "storage/zip/zipsource.h"
#include "storage/zip/zipwriter.h"
#include "support/printers.h"
#include "unit/storage/zip/ziptestutil.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <unistd.h>

using namespace Qt::StringLiterals;
using fb::app::extractArchive;
using fb::app::packFolder;
using fb::app::writeZip;
using fb::ziptest::BitWriter;
using fb::ziptest::declare;

namespace {

void writeFile(const QString &path, const QByteArray &data)
{
    ASSERT_TRUE(QDir().mkpath(QFileInfo(path).absolutePath()));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(data), data.size());
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString native(const QString &path)
{
    return QDir::toNativeSeparators(path);
}

QStringList entriesOf(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden,
                                  QDir::Name);
}

// An archive of one stored entry that declares `size` bytes but holds none: enough for the
// checks made before anything is unpacked.
QByteArray declaringArchive(quint64 size)
{
    namespace zipformat = fb::app::zipformat;
    const zipformat::StoredEntryRecord record{"media/film.bin", 0, size, 0};
    const QByteArray local = zipformat::localHeader(record);
    const QByteArray central = zipformat::centralHeader(record);
    return local + central + zipformat::directoryEnd(1, local.size(), central.size());
}

// 1 + 258,000 * 1,219 bytes of zeros (just under 300 MiB) from a deflate stream of about 2 MB.
QByteArray zeroBombArchive()
{
    const QByteArray stream = fb::ziptest::zeroBomb(1219, 1000);
    constexpr quint32 kZerosCrc = 0xCCD953B2; // the CRC-32 of that many zeros
    QByteArray archive = writeZip({{u"objects/zeros.json"_s, stream}});
    declare(archive, 0, {fb::app::kZipDeflated, kZerosCrc, 1 + 258000 * 1219});
    return archive;
}

TEST(PackFolder, PacksEveryFileSortedByRelativePath)
{
    QTemporaryDir dir;
    writeFile(dir.filePath(u"project.json"_s), "{}");
    writeFile(dir.filePath(u"objects/b.json"_s), "b");
    writeFile(dir.filePath(u"objects/a.json"_s), "a");
    writeFile(dir.filePath(u".marker"_s), "m");
    ASSERT_TRUE(QFile::link(dir.filePath(u"project.json"_s), dir.filePath(u"link.json"_s)));

    const auto packed = packFolder(dir.path());
    ASSERT_TRUE(packed) << packed.error().toStdString();
    EXPECT_EQ(*packed, writeZip({{u".marker"_s, "m"},
                                 {u"objects/a.json"_s, "a"},
                                 {u"objects/b.json"_s, "b"},
                                 {u"project.json"_s, "{}"}}));
    EXPECT_EQ(packFolder(dir.path()).value(), *packed);

    const QString missing = dir.filePath(u"missing"_s);
    EXPECT_EQ(packFolder(missing).error(),
              u"The project folder does not exist: %1"_s.arg(native(missing)));
}

TEST(ExtractArchive, WritesEveryEntryUnderTheFolder)
{
    QTemporaryDir dir;
    const QString target = dir.filePath(u"copy/of/project"_s);
    const QByteArray archive = writeZip({{u"project.json"_s, "{}"},
                                         {u"media/"_s, {}},
                                         {u"objects/deep/a.json"_s, "a"},
                                         {u"./objects/b.json"_s, "b"}});
    const auto result = extractArchive(archive, target);
    ASSERT_TRUE(result) << result.error().toStdString();
    EXPECT_EQ(readFile(target + u"/project.json"_s), "{}");
    EXPECT_EQ(readFile(target + u"/objects/deep/a.json"_s), "a");
    EXPECT_EQ(readFile(target + u"/objects/b.json"_s), "b");
    EXPECT_TRUE(QFileInfo(target + u"/media"_s).isDir());

    EXPECT_EQ(extractArchive(archive, target).error(),
              u"The extraction folder is not empty: %1"_s.arg(native(target)));
}

TEST(ExtractArchive, RefusesNamesThatLeaveTheFolderAndWritesNothing)
{
    const QString unsafeNames[]
        = {u"../escape.json"_s,      u"/abs.json"_s, u"a\\b.json"_s, u"a/../b.json"_s,
           u"a/../../escape.json"_s, u"."_s,         u""_s};
    for (const QString &name : unsafeNames) {
        SCOPED_TRACE(name.toStdString());
        QTemporaryDir dir;
        const QString target = dir.filePath(u"project"_s);
        const QByteArray archive = writeZip({{u"project.json"_s, "{}"}, {name, "x"}});
        const auto result = extractArchive(archive, target);
        ASSERT_FALSE(result);
        EXPECT_EQ(result.error(),
                  u"The archive holds an entry whose name leads outside its folder: %1"_s.arg(name));
        EXPECT_EQ(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
                  QStringList());
        EXPECT_FALSE(QFile::exists(u"/abs.json"_s));
    }
}

TEST(ExtractArchive, ReportsFoldersAndFilesThatCannotBeMade)
{
    struct Case
    {
        const char *name;
        QList<fb::app::ZipEntry> entries;
        QString message;
        QString path;
    };
    const Case cases[] = {
        {"file where a folder must go",
         {{u"objects"_s, "x"}, {u"objects/a.json"_s, "a"}},
         u"Could not create the folder for: %1"_s,
         u"objects/a.json"_s},
        {"folder where a file must go",
         {{u"objects/"_s, {}}, {u"objects"_s, "x"}},
         u"Could not write a project file: %1"_s,
         u"objects"_s},
        {"file where a folder entry must go",
         {{u"media"_s, "x"}, {u"media/"_s, {}}},
         u"Could not create the folder: %1"_s,
         u"media"_s},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        QTemporaryDir dir;
        const auto result = extractArchive(writeZip(c.entries), dir.path());
        ASSERT_FALSE(result);
        EXPECT_EQ(result.error(), c.message.arg(native(dir.filePath(c.path))));
    }
}

TEST(FolderArchive, RoundTripsThroughPackAndExtract)
{
    QTemporaryDir source;
    writeFile(source.filePath(u"project.json"_s), "{\"name\": \"Harbour\"}");
    writeFile(source.filePath(u"objects/\u00e9t\u00e9.json"_s), QByteArray(70000, 'e'));
    writeFile(source.filePath(u"media/map.png"_s), QByteArray("\x89PNG\0\1\2", 7));
    const auto packed = packFolder(source.path());
    ASSERT_TRUE(packed);

    QTemporaryDir copy;
    ASSERT_TRUE(extractArchive(*packed, copy.path()));
    EXPECT_EQ(packFolder(copy.path()).value(), *packed);
}

} // namespace

namespace {

TEST(ExtractArchive, RefusesArchivesThatWouldUnpackTooFarBeforeWritingAnything)
{
    fb::app::UnpackLimits unlimited;
    unlimited.maxTotalSize = std::numeric_limits<quint64>::max();
    unlimited.ratioCheckedAbove = std::numeric_limits<quint64>::max();
    struct Case
    {
        const char *name;
        QByteArray archive;
        fb::app::UnpackLimits limits;
        QString error;
    };
    const Case cases[] = {
        {"300 MiB of zeros",
         zeroBombArchive(),
         {},
         u"The archive would unpack to more than 100 times its own size, which no project "
         u"archive does; it is refused."_s},
        {"more than 16 GiB",
         declaringArchive((quint64(16) << 30) + 1),
         {},
         u"The archive would unpack to more than 16 GiB, more than a project can hold; it is "
         u"refused."_s},
        {"more than the disk holds", declaringArchive(quint64(1) << 62), unlimited,
         u"The archive needs 4398046511104 MiB of disk space to unpack but only "_s},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        QTemporaryDir dir;
        const auto result = extractArchive(c.archive, dir.filePath(u"project"_s), c.limits);
        ASSERT_FALSE(result);
        if (c.error.endsWith(u"only "_s)) {
            // The free space is whatever it is at the moment of the check.
            EXPECT_TRUE(result.error().startsWith(c.error)) << result.error().toStdString();
            EXPECT_TRUE(result.error().endsWith(u" MiB are free; free some space and try again."_s));
        } else {
            EXPECT_EQ(result.error(), c.error);
        }
        EXPECT_EQ(entriesOf(dir.path()), QStringList());
    }
}

// A failure partway leaves the target as it was, absent or empty, and no temporary folder.
TEST(ExtractArchive, LeavesNoTraceWhenAnEntryFails)
{
    const QByteArray text = fb::ziptest::readTestFile("text.txt");
    const QByteArray deflated = fb::ziptest::readTestFile("text.deflate");
    QByteArray longer = writeZip({{u"project.json"_s, "{}"}, {u"notes/text.txt"_s, deflated}});
    declare(longer, 1, {fb::app::kZipDeflated, fb::app::crc32(text), quint32(text.size() - 1)});
    struct Case
    {
        const char *name;
        QByteArray archive;
        QString error;
    };
    const Case cases[] = {
        {"wrong checksum in the last entry",
         writeZip({{u"project.json"_s, "{}"}, {u"objects/a.json"_s, "a", fb::app::crc32("b")}}),
         u"The archive's entry \"objects/a.json\" does not match its checksum; the archive is "
         u"damaged."_s},
        {"deflated entry longer than declared", longer,
         u"The archive's entry \"notes/text.txt\" holds more data than the archive's directory "
         u"declares; the archive is damaged."_s},
        {"two entries for one path",
         writeZip({{u"objects/a.json"_s, "a"}, {u"./objects/a.json"_s, "b"}}),
         u"The archive holds two entries that unpack to \"objects/a.json\"."_s},
    };
    for (const Case &c : cases) {
        for (const bool targetExists : {false, true}) {
            SCOPED_TRACE(std::string(c.name) + (targetExists ? ", empty target" : ", no target"));
            QTemporaryDir dir;
            const QString target = dir.filePath(u"project"_s);
            if (targetExists) {
                ASSERT_TRUE(QDir().mkdir(target));
            }
            const auto result = extractArchive(c.archive, target);
            ASSERT_FALSE(result);
            EXPECT_EQ(result.error(), c.error);
            const QStringList left = targetExists ? QStringList{u"project"_s} : QStringList();
            EXPECT_EQ(entriesOf(dir.path()), left);
            EXPECT_EQ(entriesOf(target), QStringList());
        }
    }
}

TEST(ExtractArchive, RemovesWhatExtractionsOfEndedProcessesLeftBehind)
{
    QTemporaryDir dir;
    const QString target = dir.filePath(u"project"_s);
    // No process can have this id: it is above every system's largest.
    const QString ended = u"project.unpacking-2147483647-1"_s;
    const QString running = u"project.unpacking-%1-999999"_s.arg(::getpid());
    const QString otherFolder = u"other.unpacking-2147483647-1"_s;
    for (const QString &leftover : {ended, running, otherFolder})
        writeFile(dir.filePath(leftover + u"/objects/a.json"_s), "half");

    ASSERT_TRUE(extractArchive(writeZip({{u"project.json"_s, "{}"}}), target));
    EXPECT_EQ(entriesOf(dir.path()), (QStringList{otherFolder, u"project"_s, running}));
    EXPECT_EQ(readFile(target + u"/project.json"_s), "{}");
}

// Entries used to be cut at 64 MiB. The archive is read from the file piece by piece and the
// entry decoded to disk; its copies reach a whole window back across every point where the
// decoder hands output on, and a stored block sits in the middle.
TEST(ExtractArchive, UnpacksAHundredMegabyteEntryFromAFileExactly)
{
    constexpr qint64 kSize = 100'000'000;
    QRandomGenerator random(100);
    QByteArray pattern(32768, Qt::Uninitialized);
    for (char &byte : pattern)
        byte = char(random.bounded(256));
    // The output repeats the pattern: every byte equals the one 32,768 bytes before it.
    const auto repeated = [&pattern](qint64 from, qsizetype length) {
        QByteArray bytes(length, Qt::Uninitialized);
        for (qsizetype i = 0; i < length; ++i)
            bytes[i] = pattern[(from + i) % pattern.size()];
        return bytes;
    };
    qint64 produced = 0;
    BitWriter w;
    const auto farCopy = [&] {
        w.fixed(285).code(29, 5).bits(8191, 13); // length 258, distance 32,768
        produced += 258;
    };
    w.bits(0b010, 3);
    for (const char byte : std::as_const(pattern))
        w.fixed(quint8(byte));
    produced += pattern.size();
    for (int i = 0; i < 200000; ++i)
        farCopy();
    w.fixed(256);
    w.bits(0b000, 3).alignToByte().bits(65535, 16).bits(0, 16).bytes(repeated(produced, 65535));
    produced += 65535;
    w.bits(0b011, 3);
    while (produced + 258 <= kSize)
        farCopy();
    for (const char byte : repeated(produced, kSize - produced))
        w.fixed(quint8(byte));
    w.fixed(256);

    // The pattern from the start, cut at the end of the output.
    const auto patternAt = [&pattern](qint64 done) {
        return QByteArrayView(pattern).first(std::min<qint64>(pattern.size(), kSize - done));
    };
    quint32 crc = 0;
    for (qint64 done = 0; done < kSize; done += pattern.size())
        crc = fb::app::crc32(patternAt(done), crc);
    QByteArray archive = writeZip({{u"project.json"_s, "{}"}, {u"media/film.bin"_s, w.bytes()}});
    declare(archive, 1, {fb::app::kZipDeflated, crc, quint32(kSize)});

    QTemporaryDir dir;
    const QString archivePath = dir.filePath(u"novel.fablery"_s);
    writeFile(archivePath, archive);
    QFile file(archivePath);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    fb::app::ZipSource source(&file);
    const QString target = dir.filePath(u"project"_s);
    const auto result = extractArchive(source, target);
    ASSERT_TRUE(result) << result.error().toStdString();

    QFile film(target + u"/media/film.bin"_s);
    ASSERT_TRUE(film.open(QIODevice::ReadOnly));
    ASSERT_EQ(film.size(), kSize);
    for (qint64 done = 0; done < kSize; done += pattern.size())
        ASSERT_TRUE(film.read(pattern.size()) == patternAt(done)) << done;
}

} // namespace
