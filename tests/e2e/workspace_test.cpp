#include "storage/folderarchive.h"
#include "storage/storagepaths.h"
#include "storage/zip/zipwriter.h"
#include "support/serverprocess.h"

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

using namespace Qt::StringLiterals;

using fb::test::ScratchProject;
using fb::test::ServerProcess;

namespace {

const QString arrivalId = u"6f1c0a52-0000-4000-8000-000000000001"_s;

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
    const struct utimbuf times
    {
        secondsSinceEpoch, secondsSinceEpoch
    };
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
        m_bundle = m_root.filePath(u"The Lantern Road.fablery"_s);
        writeFile(m_bundle, m_bundleBytes);
    }

    ServerProcess start() { return ServerProcess({m_bundle}, m_dataHome.path()); }

    QString dataFolder() const { return m_dataHome.filePath(u"Tallowick Works/Fablery MCP"_s); }
    QString workingCopy() const
    {
        return QDir(dataFolder())
            .filePath(u"workingcopies-mcp/"_s + fb::app::workingCopyName(m_bundle));
    }
    QJsonObject marker() const { return readJson(workingCopy() + u".json"_s); }

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
    ScratchProject project(u"projects/novel"_s);
    const auto before = fb::test::folderContents(project.path());
    ServerProcess server({project.path()});

    EXPECT_EQ(server.call(u"undo_last"_s).text, u"Nothing to undo."_s);
    const auto created = server.call(u"create_document"_s, {{u"title"_s, u"Epilogue"_s}});
    ASSERT_FALSE(created.isError) << created.text.toStdString();
    EXPECT_EQ(fb::test::folderContents(project.path()).size(), before.size() + 1);

    const auto undone = server.call(u"undo_last"_s);
    EXPECT_EQ(undone.text, u"Undid the last change."_s);
    EXPECT_EQ(fb::test::folderContents(project.path()), before);
    EXPECT_EQ(server.call(u"get_recent_changes"_s).text,
              u"Created the prose document 'Epilogue' at the top level (0 "
              "characters).\nUndid the last change."_s);
    EXPECT_EQ(server.finish(), 0);
}

TEST(FolderProject, AFailingCallChangesNothing)
{
    ScratchProject project(u"projects/novel"_s);
    const auto before = fb::test::folderContents(project.path());
    ServerProcess server({project.path()});
    const auto refused = server.call(u"update_document"_s, {{u"title"_s, u"Arrival"_s},
                                                            {u"body"_s, u"lost"_s},
                                                            {u"kind"_s, u"poem"_s}});
    EXPECT_TRUE(refused.isError);
    EXPECT_EQ(fb::test::folderContents(project.path()), before);
    EXPECT_EQ(server.call(u"get_recent_changes"_s).text, u"No changes this session."_s);
    // "arguments" that is not an object runs the tool with no arguments.
    const QJsonObject answer = server.request(
        R"({"id":1,"method":"tools/call","params":{"name":"get_recent_changes","arguments":5}})");
    EXPECT_EQ(
        QJsonDocument(answer).toJson(QJsonDocument::Compact),
        R"({"id":1,"jsonrpc":"2.0","result":{"content":[{"text":"No changes this session.","type":"text"}]}})");
}

TEST(FolderProject, AdoptsAnOutsideEditOfAJsonFileButNotOfAnImage)
{
    ScratchProject project(u"projects/novel"_s);
    ServerProcess server({project.path()});
    ASSERT_FALSE(
        server
            .call(u"append_to_document"_s, {{u"title"_s, u"Dust"_s}, {u"text"_s, u"More dust."_s}})
            .isError);

    // An image changing is no reason to reload: the undo step survives.
    writeFile(project.filePath(u"assets/map.png"_s), "not really a png");
    EXPECT_EQ(server.call(u"undo_last"_s).text, u"Undid the last change."_s);

    // The desktop application renames a chapter; the server sees it before its next call, and
    // the reload leaves nothing to undo.
    ASSERT_FALSE(
        server.call(u"append_to_document"_s, {{u"title"_s, u"Dust"_s}, {u"text"_s, u"Again."_s}})
            .isError);
    const QString file = project.filePath(u"objects/"_s + arrivalId + u".json"_s);
    QJsonObject arrival = readJson(file);
    arrival.insert(u"title"_s, u"Landfall"_s);
    writeFile(file, QJsonDocument(arrival).toJson());
    EXPECT_FALSE(server.call(u"get_document"_s, {{u"title"_s, u"Landfall"_s}}).isError);
    EXPECT_EQ(server.call(u"undo_last"_s).text, u"Nothing to undo."_s);
}

TEST(FolderProject, NoticesARewriteOfTheSameSizeWithinTheSameSecond)
{
    ScratchProject project(u"projects/novel"_s);
    ServerProcess server({project.path()});
    ASSERT_FALSE(server.call(u"get_manuscript_tree"_s).isError);

    const QString file = project.filePath(u"objects/"_s + arrivalId + u".json"_s);
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
    EXPECT_FALSE(server.call(u"get_document"_s, {{u"title"_s, u"Arrivel"_s}}).isError);
}

TEST(FolderProject, KeepsFifteenBackupsPerName)
{
    ScratchProject project(u"projects/novel"_s);
    ServerProcess server({project.path()});
    const QString folder = QDir(server.dataHome())
                               .filePath(u"Tallowick Works/Fablery MCP/backups/novel"_s);
    for (int i = 0; i < 15; ++i)
        writeFile(QDir(folder).filePath(
                      u"novel-20200101-0000000%1.fbbackup"_s.arg(i, 2, 10, QChar(u'0'))),
                  "old");
    writeFile(QDir(folder).filePath(u"other-20200101-000000000.fbbackup"_s), "other");

    const auto answer = server.call(u"backup_project"_s);
    ASSERT_FALSE(answer.isError) << answer.text.toStdString();
    EXPECT_TRUE(answer.text.startsWith(u"Backed up the project to %1/novel-"_s.arg(folder)));
    EXPECT_TRUE(answer.text.endsWith(u".fbbackup. Pruned 1 older backup(s)."_s));
    const QStringList left = QDir(folder).entryList(QDir::Files, QDir::Name);
    EXPECT_EQ(left.size(), 16);
    EXPECT_FALSE(left.contains(u"novel-20200101-000000000.fbbackup"_s));
    EXPECT_TRUE(left.contains(u"other-20200101-000000000.fbbackup"_s));
}

TEST_F(BundleTest, SavesIntoTheBundleAndReusesTheCleanWorkingCopy)
{
    {
        ServerProcess server = start();
        const auto created = server.call(u"create_document"_s, {{u"title"_s, u"Epilogue"_s}});
        ASSERT_FALSE(created.isError) << created.text.toStdString();
        EXPECT_EQ(server.finish(), 0);
    }
    const QByteArray saved = readFile(m_bundle);
    EXPECT_NE(saved, m_bundleBytes);
    EXPECT_EQ(marker().value(u"bundleSha256"_s).toString(), sha256(saved));
    EXPECT_EQ(marker().value(u"bundlePath"_s).toString(), QFileInfo(m_bundle).absoluteFilePath());
    EXPECT_EQ(*fb::app::packFolder(workingCopy()), saved);

    // A second session finds the working copy clean and does not extract it again.
    const QString probe = QDir(workingCopy()).filePath(u"project.json"_s);
    const QDateTime before = QFileInfo(probe).lastModified();
    QThread::msleep(20);
    ServerProcess again = start();
    EXPECT_TRUE(again.call(u"get_manuscript_tree"_s).text.contains(u"- Epilogue"_s));
    EXPECT_EQ(QFileInfo(probe).lastModified(), before);
    EXPECT_EQ(readFile(m_bundle), saved);
}

TEST_F(BundleTest, NeverWritesAWorkingCopyThatDiffersFromItsBundleIntoIt)
{
    start().finish();
    // The working copy was edited by hand (or left half-unpacked): it is no unsaved work of the
    // server's, which writes the bundle before the working copy.
    const QString file = QDir(workingCopy()).filePath(u"objects/"_s + arrivalId + u".json"_s);
    QJsonObject arrival = readJson(file);
    arrival.insert(u"title"_s, u"Landfall"_s);
    writeFile(file, QJsonDocument(arrival).toJson());

    ServerProcess server = start();
    EXPECT_TRUE(server.call(u"get_document"_s, {{u"title"_s, u"Landfall"_s}}).isError);
    EXPECT_EQ(readFile(m_bundle), m_bundleBytes);
    EXPECT_EQ(*fb::app::packFolder(workingCopy()), m_bundleBytes);
    EXPECT_EQ(QDir(QDir(dataFolder()).filePath(u"backups/The Lantern Road"_s))
                  .entryList(QDir::Files)
                  .size(),
              1);
}

TEST_F(BundleTest, BacksUpAStaleWorkingCopyWhenTheBundleChanged)
{
    start().finish();
    writeFile(QDir(workingCopy()).filePath(u"objects/stale.txt"_s),
              "edit that never reached the bundle");
    // Meanwhile the desktop application saved a different bundle.
    ScratchProject changed(u"projects/novel"_s);
    QFile::remove(changed.filePath(u"objects/6f1c0a52-0000-4000-8000-000000000005.json"_s));
    writeFile(m_bundle, *fb::app::packFolder(changed.path()));

    ServerProcess server = start();
    EXPECT_FALSE(server.call(u"get_manuscript_tree"_s).text.contains(u"Dust"_s));
    EXPECT_FALSE(QFileInfo::exists(QDir(workingCopy()).filePath(u"objects/stale.txt"_s)));
    const QStringList backups = QDir(QDir(dataFolder()).filePath(u"backups/The Lantern Road"_s))
                                    .entryList(QDir::Files);
    ASSERT_EQ(backups.size(), 1);
    EXPECT_TRUE(backups.first().startsWith(u"The Lantern Road-"_s));
}

TEST_F(BundleTest, AdoptsATouchedBundle)
{
    ServerProcess server = start();
    ASSERT_FALSE(
        server
            .call(u"append_to_document"_s, {{u"title"_s, u"Dust"_s}, {u"text"_s, u"More dust."_s}})
            .isError);
    setModifiedTime(m_bundle, QFileInfo(m_bundle).lastModified().toSecsSinceEpoch() + 5);
    EXPECT_EQ(server.call(u"undo_last"_s).text, u"Nothing to undo."_s);
}

TEST(BundleFormats, OpensUpperCaseSuffixesAndDeflatedEntries)
{
    QTemporaryDir root;
    const QString bundle = root.filePath(u"NOVEL.FABLERY"_s);
    QFile::copy(QStringLiteral(FB_TEST_DATA_DIR "/bundles/novel-deflated.fablery"), bundle);
    ServerProcess server({bundle});
    const auto tree = server.call(u"get_manuscript_tree"_s);
    EXPECT_TRUE(tree.text.startsWith(u"# Manuscript (6 document(s)"_s)) << tree.text.toStdString();
    ASSERT_FALSE(server.call(u"save_project"_s).isError);
    EXPECT_EQ(server.finish(), 0);
    EXPECT_EQ(server.standardError(), u"fablery-mcp serving %1\n"_s.arg(bundle).toUtf8());
}

TEST(BundleFormats, RefusesHostileArchivesWithoutWritingOutsideTheWorkingCopy)
{
    const auto validBundle = *fb::app::packFolder(
        QStringLiteral(FB_TEST_DATA_DIR "/projects/novel"));
    QByteArray badDirectory = validBundle;
    badDirectory[badDirectory.lastIndexOf("PK\x01\x02") + 2] = 'X';
    QByteArray methodTwelve = fb::app::writeZip({{u"project.json"_s, "{}"}});
    methodTwelve[8] = 12;                                       // local header
    methodTwelve[methodTwelve.indexOf("PK\x01\x02") + 10] = 12; // central directory
    const QByteArray escaping = fb::app::writeZip(
        {{u"project.json"_s, "{}"}, {u"../escape.json"_s, "{}"}});

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
        const QString bundle = root.filePath(u"hostile.fablery"_s);
        writeFile(bundle, c.bytes);
        ServerProcess server({bundle});
        EXPECT_EQ(server.finish(60000), 1);
        EXPECT_TRUE(server.standardError().startsWith("Could not open the project: "));
        QDirIterator everything(server.dataHome(), QDir::Files, QDirIterator::Subdirectories);
        while (everything.hasNext())
            EXPECT_FALSE(everything.next().endsWith(u"escape.json"_s));
    }
}

TEST(ShortLivedProcess, KilledRightAfterStartLeavesTheProjectIntact)
{
    QTemporaryDir root;
    QTemporaryDir dataHome;
    const QString bundle = root.filePath(u"novel.fablery"_s);
    QFile::copy(QStringLiteral(FB_TEST_DATA_DIR "/bundles/novel-deflated.fablery"), bundle);
    ServerProcess first({bundle}, dataHome.path());
    ASSERT_FALSE(first.call(u"create_document"_s, {{u"title"_s, u"Coda"_s}}).isError);
    const QByteArray saved = readFile(bundle);

    for (int i = 0; i < 5; ++i) {
        QProcess second;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"XDG_DATA_HOME"_s, dataHome.path());
        second.setProcessEnvironment(environment);
        second.start(QStringLiteral(FB_SERVER_BINARY), {bundle});
        second.waitForStarted();
        QThread::msleep(i * 15);
        second.kill();
        second.waitForFinished();
    }
    EXPECT_EQ(readFile(bundle), saved);
    EXPECT_TRUE(first.call(u"get_manuscript_tree"_s).text.contains(u"- Coda"_s));
    EXPECT_FALSE(
        first.call(u"update_document"_s, {{u"title"_s, u"Coda"_s}, {u"status"_s, u"Final"_s}})
            .isError);
    ServerProcess third({bundle}, dataHome.path());
    EXPECT_TRUE(third.call(u"get_document"_s, {{u"title"_s, u"Coda"_s}})
                    .text.contains(u"- Status: Final"_s));
}

} // namespace
