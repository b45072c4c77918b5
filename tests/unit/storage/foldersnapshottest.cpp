#include "storage/foldersnapshot.h"

#include "storage/projectfolder.h"
#include "support/printers.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>

#include <utime.h>

using namespace Qt::StringLiterals;

using fb::app::FolderSnapshot;

namespace {

void write(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(bytes);
}

struct OutsideEdit
{
    const char *name;
    std::function<void(const QDir &)> edit;
    bool isChange;
};

// Every kind of outside edit, checked with the kernel's reports and with the full comparison.
class FolderSnapshotTest : public ::testing::TestWithParam<FolderSnapshot::Detection>
{
protected:
    void SetUp() override
    {
        m_root = QDir(m_dir.path());
        write(m_root.filePath(u"project.json"_s), "{\"name\": \"A\"}");
        write(m_root.filePath(u"objects/one.json"_s), "{\"title\": \"One\"}");
        write(m_root.filePath(u"assets/map.png"_s), "png");
    }

    QTemporaryDir m_dir;
    QDir m_root;
};

TEST_P(FolderSnapshotTest, NoticesEveryOutsideChangeOfProjectFiles)
{
    const OutsideEdit edits[] = {
        {"nothing", [](const QDir &) {}, false},
        {"an image", [](const QDir &d) { write(d.filePath(u"assets/map.png"_s), "gif"); }, false},
        {"a new text file", [](const QDir &d) { write(d.filePath(u"notes.txt"_s), "x"); }, false},
        {"a new json file", [](const QDir &d) { write(d.filePath(u"objects/two.json"_s), "{}"); },
         true},
        {"a new YAML file in a new folder",
         [](const QDir &d) { write(d.filePath(u"extra/deep/a.YAML"_s), "a: 1"); }, true},
        {"a removed json file",
         [](const QDir &d) { QFile::remove(d.filePath(u"objects/one.json"_s)); }, true},
        {"the same bytes written again",
         [](const QDir &d) { write(d.filePath(u"objects/one.json"_s), "{\"title\": \"One\"}"); },
         false},
        {"same size, same second, in place",
         [](const QDir &d) {
             const QString path = d.filePath(u"objects/one.json"_s);
             const qint64 seconds = QFileInfo(path).lastModified().toSecsSinceEpoch();
             write(path, "{\"title\": \"Two\"}");
             const struct utimbuf times
             {
                 seconds, seconds
             };
             ::utime(QFile::encodeName(path).constData(), &times);
         },
         true},
        {"an atomic replacement",
         [](const QDir &d) {
             write(d.filePath(u"objects/one.json.tmp"_s), "{\"title\": \"New\"}");
             QFile::remove(d.filePath(u"objects/one.json"_s));
             QFile::rename(d.filePath(u"objects/one.json.tmp"_s), d.filePath(u"objects/one.json"_s));
         },
         true},
    };
    for (const OutsideEdit &edit : edits) {
        SCOPED_TRACE(edit.name);
        QTemporaryDir dir;
        const QDir root(dir.path());
        write(root.filePath(u"project.json"_s), "{\"name\": \"A\"}");
        write(root.filePath(u"objects/one.json"_s), "{\"title\": \"One\"}");
        write(root.filePath(u"assets/map.png"_s), "png");
        FolderSnapshot snapshot(GetParam());
        snapshot.take(dir.path());
        EXPECT_FALSE(snapshot.hasChanged(dir.path()));
        edit.edit(root);
        EXPECT_EQ(snapshot.hasChanged(dir.path()), edit.isChange);
    }
}

TEST_P(FolderSnapshotTest, TakesItsOwnWritesAsNoChange)
{
    FolderSnapshot snapshot(GetParam());
    snapshot.take(m_dir.path());
    fb::app::FolderWriteReport report;
    report.written.insert(u"objects/two.json"_s, "{\"title\": \"Two\"}");
    report.removed.append(u"objects/one.json"_s);
    write(m_root.filePath(u"objects/two.json"_s), "{\"title\": \"Two\"}");
    QFile::remove(m_root.filePath(u"objects/one.json"_s));
    snapshot.update(m_dir.path(), report);
    EXPECT_FALSE(snapshot.hasChanged(m_dir.path()));
    // An outside edit right after this process's own write is still seen.
    write(m_root.filePath(u"objects/two.json"_s), "{\"title\": \"Owt\"}");
    EXPECT_TRUE(snapshot.hasChanged(m_dir.path()));
}

INSTANTIATE_TEST_SUITE_P(BothDetections, FolderSnapshotTest,
                         ::testing::Values(FolderSnapshot::Detection::KernelReports,
                                           FolderSnapshot::Detection::FullScan));

} // namespace
