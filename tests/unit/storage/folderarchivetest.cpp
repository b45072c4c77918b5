#include "storage/folderarchive.h"
#include "storage/zip/zipreader.h"
#include "storage/zip/zipwriter.h"
#include "support/printers.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using fb::app::extractArchive;
using fb::app::packFolder;
using fb::app::writeZip;

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
        EXPECT_EQ(
            result.error(),
            u"The archive holds an entry whose name leads outside its folder: %1"_s.arg(name));
        EXPECT_EQ(
            QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
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
