#include "support/serverprocess.h"

#include "storage/folderarchive.h"
#include "storage/storagepaths.h"
#include "storage/zip/zipwriter.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QThread>

#include <gtest/gtest.h>

#include <utime.h>

using fb::test::ScratchProject;
using fb::test::ServerProcess;

namespace {

const QString arrivalId = QStringLiteral("6f1c0a52-0000-4000-8000-000000000001");

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(bytes);
}

QJsonObject readJson(const QString &path)
{
    return QJsonDocument::fromJson(readFile(path)).object();
}

// Moves a file's modification time, as another program's save within the same second would not.
void setModifiedTime(const QString &path, qint64 secondsSinceEpoch)
{
    const struct utimbuf times{secondsSinceEpoch, secondsSinceEpoch};
    ASSERT_EQ(::utime(QFile::encodeName(path).constData(), &times), 0);
}

// A bundle of the novel test project, written beside a data folder of its own.
class BundleTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const auto packed = fb::app::packFolder(QStringLiteral(FB_TEST_DATA_DIR "/projects/novel"));
        ASSERT_TRUE(packed);
        m_bundleBytes = *packed;
        m_bundle = m_root.filePath(QStringLiteral("The Lantern Road.fablery"));
        writeFile(m_bundle, m_bundleBytes);
    }

    ServerProcess start() { return ServerProcess({m_bundle}, m_dataHome.path()); }

    QString dataFolder() const
    {
        return m_dataHome.filePath(QStringLiteral("Tallowick Works/Fablery MCP"));
    }
    QString workingCopy() const
    {
        return QDir(dataFolder()).filePath(QStringLiteral("workingcopies-mcp/")
                                           + fb::app::workingCopyName(m_bundle));
    }
    QJsonObject marker() const { return readJson(workingCopy() + QStringLiteral(".json")); }

    QTemporaryDir m_root;
    QTemporaryDir m_dataHome;
    QString m_bundle;
    QByteArray m_bundleBytes;
};

QString sha256(const QByteArray &bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

TEST(FolderProject, SavesEachChangeAndUndoesIt)
{
    ScratchProject project(QStringLiteral("projects/novel"));
    const auto before = fb::test::folderContents(project.path());
    ServerProcess server({project.path()});

    EXPECT_EQ(server.call(QStringLiteral("undo_last")).text, QStringLiteral("Nothing to undo."));
    const auto created = server.call(QStringLiteral("create_document"),
                                     {{QStringLiteral("title"), QStringLiteral("Epilogue")}});
    ASSERT_FALSE(created.isError) << created.text.toStdString();
    EXPECT_EQ(fb::test::folderContents(project.path()).size(), before.size() + 1);

    const auto undone = server.call(QStringLiteral("undo_last"));
    EXPECT_EQ(undone.text, QStringLiteral("Undid the last change."));
    EXPECT_EQ(fb::test::folderContents(project.path()), before);
    EXPECT_EQ(server.call(QStringLiteral("get_recent_changes")).text,
              QStringLiteral("Created the prose document 'Epilogue' at the top level (0 "
                             "characters).\nUndid the last change."));
    EXPECT_EQ(server.finish(), 0);
}

TEST(FolderProject, AFailingCallChangesNothing)
{
    ScratchProject project(QStringLiteral("projects/novel"));
    const auto before = fb::test::folderContents(project.path());
    ServerProcess server({project.path()});
    const auto refused = server.call(QStringLiteral("update_document"),
                                     {{QStringLiteral("title"), QStringLiteral("Arrival")},
                                      {QStringLiteral("body"), QStringLiteral("lost")},
                                      {QStringLiteral("kind"), QStringLiteral("poem")}});
    EXPECT_TRUE(refused.isError);
    EXPECT_EQ(fb::test::folderContents(project.path()), before);
    EXPECT_EQ(server.call(QStringLiteral("get_recent_changes")).text,
              QStringLiteral("No changes this session."));
    // "arguments" that is not an object runs the tool with no arguments.
    const QJsonObject answer = server.request(
        R"({"id":1,"method":"tools/call","params":{"name":"get_recent_changes","arguments":5}})");
    EXPECT_EQ(QJsonDocument(answer).toJson(QJsonDocument::Compact),
              R"({"id":1,"jsonrpc":"2.0","result":{"content":[{"text":"No changes this session.","type":"text"}]}})");
}

TEST(FolderProject, AdoptsAnOutsideEditOfAJsonFileButNotOfAnImage)
{
    ScratchProject project(QStringLiteral("projects/novel"));
    ServerProcess server({project.path()});
    ASSERT_FALSE(server.call(QStringLiteral("append_to_document"),
                             {{QStringLiteral("title"), QStringLiteral("Dust")},
                              {QStringLiteral("text"), QStringLiteral("More dust.")}})
                     .isError);

    // An image changing is no reason to reload: the undo step survives.
    writeFile(project.filePath(QStringLiteral("assets/map.png")), "not really a png");
    EXPECT_EQ(server.call(QStringLiteral("undo_last")).text, QStringLiteral("Undid the last change."));

    // The desktop application renames a chapter; the server sees it before its next call, and
    // the reload leaves nothing to undo.
    ASSERT_FALSE(server.call(QStringLiteral("append_to_document"),
                             {{QStringLiteral("title"), QStringLiteral("Dust")},
                              {QStringLiteral("text"), QStringLiteral("Again.")}})
                     .isError);
    const QString file = project.filePath(QStringLiteral("objects/") + arrivalId + QStringLiteral(".json"));
    QJsonObject arrival = readJson(file);
    arrival.insert(QStringLiteral("title"), QStringLiteral("Landfall"));
    writeFile(file, QJsonDocument(arrival).toJson());
    EXPECT_FALSE(server.call(QStringLiteral("get_document"), {{QStringLiteral("title"), QStringLiteral("Landfall")}})
                     .isError);
    EXPECT_EQ(server.call(QStringLiteral("undo_last")).text, QStringLiteral("Nothing to undo."));
}

TEST(FolderProject, NoticesARewriteOfTheSameSizeWithinTheSameSecond)
{
    ScratchProject project(QStringLiteral("projects/novel"));
    ServerProcess server({project.path()});
    ASSERT_FALSE(server.call(QStringLiteral("get_manuscript_tree")).isError);

    const QString file = project.filePath(QStringLiteral("objects/") + arrivalId + QStringLiteral(".json"));
    QByteArray bytes = readFile(file);
    const qint64 modified = QFileInfo(file).lastModified().toSecsSinceEpoch();
    bytes.replace("\"Arrival\"", "\"Arrivel\"");
    // Rewritten in place, same size, and the modification time set back to what it was.
    {
        QFile inPlace(file);
        ASSERT_TRUE(inPlace.open(QIODevice::ReadWrite));
        inPlace.write(bytes);
    }
    setModifiedTime(file, modified);
    EXPECT_FALSE(server.call(QStringLiteral("get_document"), {{QStringLiteral("title"), QStringLiteral("Arrivel")}})
                     .isError);
}

TEST(FolderProject, KeepsFifteenBackupsPerName)
{
    ScratchProject project(QStringLiteral("projects/novel"));
    ServerProcess server({project.path()});
    const QString folder = QDir(server.dataHome())
                               .filePath(QStringLiteral("Tallowick Works/Fablery MCP/backups/novel"));
    for (int i = 0; i < 15; ++i)
        writeFile(QDir(folder).filePath(QStringLiteral("novel-20200101-0000000%1.fbbackup").arg(i, 2, 10, QChar(u'0'))), "old");
    writeFile(QDir(folder).filePath(QStringLiteral("other-20200101-000000000.fbbackup")), "other");

    const auto answer = server.call(QStringLiteral("backup_project"));
    ASSERT_FALSE(answer.isError) << answer.text.toStdString();
    EXPECT_TRUE(answer.text.startsWith(QStringLiteral("Backed up the project to %1/novel-").arg(folder)));
    EXPECT_TRUE(answer.text.endsWith(QStringLiteral(".fbbackup. Pruned 1 older backup(s).")));
    const QStringList left = QDir(folder).entryList(QDir::Files, QDir::Name);
    EXPECT_EQ(left.size(), 16);
    EXPECT_FALSE(left.contains(QStringLiteral("novel-20200101-000000000.fbbackup")));
    EXPECT_TRUE(left.contains(QStringLiteral("other-20200101-000000000.fbbackup")));
}

TEST_F(BundleTest, SavesIntoTheBundleAndReusesTheCleanWorkingCopy)
{
    {
        ServerProcess server = start();
        const auto created = server.call(QStringLiteral("create_document"),
                                         {{QStringLiteral("title"), QStringLiteral("Epilogue")}});
        ASSERT_FALSE(created.isError) << created.text.toStdString();
        EXPECT_EQ(server.finish(), 0);
    }
    const QByteArray saved = readFile(m_bundle);
    EXPECT_NE(saved, m_bundleBytes);
    EXPECT_EQ(marker().value(QStringLiteral("bundleSha256")).toString(), sha256(saved));
    EXPECT_EQ(marker().value(QStringLiteral("bundlePath")).toString(), QFileInfo(m_bundle).absoluteFilePath());
    EXPECT_EQ(*fb::app::packFolder(workingCopy()), saved);

    // A second session finds the working copy clean and does not extract it again.
    const QString probe = QDir(workingCopy()).filePath(QStringLiteral("project.json"));
    const QDateTime before = QFileInfo(probe).lastModified();
    QThread::msleep(20);
    ServerProcess again = start();
    EXPECT_TRUE(again.call(QStringLiteral("get_manuscript_tree")).text.contains(QStringLiteral("- Epilogue")));
    EXPECT_EQ(QFileInfo(probe).lastModified(), before);
    EXPECT_EQ(readFile(m_bundle), saved);
}

TEST_F(BundleTest, NeverWritesAWorkingCopyThatDiffersFromItsBundleIntoIt)
{
    start().finish();
    // The working copy was edited by hand (or left half-unpacked): it is no unsaved work of the
    // server's, which writes the bundle before the working copy.
    const QString file = QDir(workingCopy()).filePath(QStringLiteral("objects/") + arrivalId + QStringLiteral(".json"));
    QJsonObject arrival = readJson(file);
    arrival.insert(QStringLiteral("title"), QStringLiteral("Landfall"));
    writeFile(file, QJsonDocument(arrival).toJson());

    ServerProcess server = start();
    EXPECT_TRUE(server.call(QStringLiteral("get_document"), {{QStringLiteral("title"), QStringLiteral("Landfall")}}).isError);
    EXPECT_EQ(readFile(m_bundle), m_bundleBytes);
    EXPECT_EQ(*fb::app::packFolder(workingCopy()), m_bundleBytes);
    EXPECT_EQ(QDir(QDir(dataFolder()).filePath(QStringLiteral("backups/The Lantern Road"))).entryList(QDir::Files).size(), 1);
}

TEST_F(BundleTest, BacksUpAStaleWorkingCopyWhenTheBundleChanged)
{
    start().finish();
    writeFile(QDir(workingCopy()).filePath(QStringLiteral("objects/stale.txt")), "edit that never reached the bundle");
    // Meanwhile the desktop application saved a different bundle.
    ScratchProject changed(QStringLiteral("projects/novel"));
    QFile::remove(changed.filePath(QStringLiteral("objects/6f1c0a52-0000-4000-8000-000000000005.json")));
    writeFile(m_bundle, *fb::app::packFolder(changed.path()));

    ServerProcess server = start();
    EXPECT_FALSE(server.call(QStringLiteral("get_manuscript_tree")).text.contains(QStringLiteral("Dust")));
    EXPECT_FALSE(QFileInfo::exists(QDir(workingCopy()).filePath(QStringLiteral("objects/stale.txt"))));
    const QStringList backups =
        QDir(QDir(dataFolder()).filePath(QStringLiteral("backups/The Lantern Road"))).entryList(QDir::Files);
    ASSERT_EQ(backups.size(), 1);
    EXPECT_TRUE(backups.first().startsWith(QStringLiteral("The Lantern Road-")));
}

TEST_F(BundleTest, AdoptsATouchedBundle)
{
    ServerProcess server = start();
    ASSERT_FALSE(server.call(QStringLiteral("append_to_document"),
                             {{QStringLiteral("title"), QStringLiteral("Dust")},
                              {QStringLiteral("text"), QStringLiteral("More dust.")}})
                     .isError);
    setModifiedTime(m_bundle, QFileInfo(m_bundle).lastModified().toSecsSinceEpoch() + 5);
    EXPECT_EQ(server.call(QStringLiteral("undo_last")).text, QStringLiteral("Nothing to undo."));
}

TEST(BundleFormats, OpensUpperCaseSuffixesAndDeflatedEntries)
{
    QTemporaryDir root;
    const QString bundle = root.filePath(QStringLiteral("NOVEL.FABLERY"));
    QFile::copy(QStringLiteral(FB_TEST_DATA_DIR "/bundles/novel-deflated.fablery"), bundle);
    ServerProcess server({bundle});
    const auto tree = server.call(QStringLiteral("get_manuscript_tree"));
    EXPECT_TRUE(tree.text.startsWith(QStringLiteral("# Manuscript (6 document(s)"))) << tree.text.toStdString();
    ASSERT_FALSE(server.call(QStringLiteral("save_project")).isError);
    EXPECT_EQ(server.finish(), 0);
    EXPECT_EQ(server.standardError(), QStringLiteral("fablery-mcp serving %1\n").arg(bundle).toUtf8());
}

TEST(BundleFormats, RefusesHostileArchivesWithoutWritingOutsideTheWorkingCopy)
{
    const auto validBundle = *fb::app::packFolder(QStringLiteral(FB_TEST_DATA_DIR "/projects/novel"));
    QByteArray badDirectory = validBundle;
    badDirectory[badDirectory.lastIndexOf("PK\x01\x02") + 2] = 'X';
    QByteArray methodTwelve = fb::app::writeZip({{QStringLiteral("project.json"), "{}"}});
    methodTwelve[8] = 12;                               // local header
    methodTwelve[methodTwelve.indexOf("PK\x01\x02") + 10] = 12; // central directory
    const QByteArray escaping = fb::app::writeZip(
        {{QStringLiteral("project.json"), "{}"}, {QStringLiteral("../escape.json"), "{}"}});

    const struct
    {
        const char *name;
        QByteArray bytes;
    } cases[] = {
        {"truncated", validBundle.left(validBundle.size() / 2)},
        {"bad central directory", badDirectory},
        {"unknown method", methodTwelve},
        {"entry escaping the folder", escaping},
        {"deflate bomb", readFile(QStringLiteral(FB_TEST_DATA_DIR "/bundles/bomb.fablery"))},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        QTemporaryDir root;
        const QString bundle = root.filePath(QStringLiteral("hostile.fablery"));
        writeFile(bundle, c.bytes);
        ServerProcess server({bundle});
        EXPECT_EQ(server.finish(60000), 1);
        EXPECT_TRUE(server.standardError().startsWith("Could not open the project: "));
        QDirIterator everything(server.dataHome(), QDir::Files, QDirIterator::Subdirectories);
        while (everything.hasNext())
            EXPECT_FALSE(everything.next().endsWith(QStringLiteral("escape.json")));
    }
}

TEST(ShortLivedProcess, KilledRightAfterStartLeavesTheProjectIntact)
{
    QTemporaryDir root;
    QTemporaryDir dataHome;
    const QString bundle = root.filePath(QStringLiteral("novel.fablery"));
    QFile::copy(QStringLiteral(FB_TEST_DATA_DIR "/bundles/novel-deflated.fablery"), bundle);
    ServerProcess first({bundle}, dataHome.path());
    ASSERT_FALSE(first.call(QStringLiteral("create_document"), {{QStringLiteral("title"), QStringLiteral("Coda")}}).isError);
    const QByteArray saved = readFile(bundle);

    for (int i = 0; i < 5; ++i) {
        QProcess second;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_DATA_HOME"), dataHome.path());
        second.setProcessEnvironment(environment);
        second.start(QStringLiteral(FB_SERVER_BINARY), {bundle});
        second.waitForStarted();
        QThread::msleep(i * 15);
        second.kill();
        second.waitForFinished();
    }
    EXPECT_EQ(readFile(bundle), saved);
    EXPECT_TRUE(first.call(QStringLiteral("get_manuscript_tree")).text.contains(QStringLiteral("- Coda")));
    EXPECT_FALSE(first.call(QStringLiteral("update_document"), {{QStringLiteral("title"), QStringLiteral("Coda")}, {QStringLiteral("status"), QStringLiteral("Final")}}).isError);
    ServerProcess third({bundle}, dataHome.path());
    EXPECT_TRUE(third.call(QStringLiteral("get_document"), {{QStringLiteral("title"), QStringLiteral("Coda")}})
                    .text.contains(QStringLiteral("- Status: Final")));
}

} // namespace
