#include "support/printers.h"

#include "storage/foldersnapshot.h"
#include "storage/projectfolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>

#include <utime.h>

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
        write(m_root.filePath(QStringLiteral("project.json")), "{\"name\": \"A\"}");
        write(m_root.filePath(QStringLiteral("objects/one.json")), "{\"title\": \"One\"}");
        write(m_root.filePath(QStringLiteral("assets/map.png")), "png");
    }

    QTemporaryDir m_dir;
    QDir m_root;
};

TEST_P(FolderSnapshotTest, NoticesEveryOutsideChangeOfProjectFiles)
{
    const OutsideEdit edits[] = {
        {"nothing", [](const QDir &) {}, false},
        {"an image", [](const QDir &d) { write(d.filePath(QStringLiteral("assets/map.png")), "gif"); }, false},
        {"a new text file", [](const QDir &d) { write(d.filePath(QStringLiteral("notes.txt")), "x"); }, false},
        {"a new json file", [](const QDir &d) { write(d.filePath(QStringLiteral("objects/two.json")), "{}"); }, true},
        {"a new YAML file in a new folder",
         [](const QDir &d) { write(d.filePath(QStringLiteral("extra/deep/a.YAML")), "a: 1"); }, true},
        {"a removed json file", [](const QDir &d) { QFile::remove(d.filePath(QStringLiteral("objects/one.json"))); }, true},
        {"the same bytes written again",
         [](const QDir &d) { write(d.filePath(QStringLiteral("objects/one.json")), "{\"title\": \"One\"}"); }, false},
        {"same size, same second, in place",
         [](const QDir &d) {
             const QString path = d.filePath(QStringLiteral("objects/one.json"));
             const qint64 seconds = QFileInfo(path).lastModified().toSecsSinceEpoch();
             write(path, "{\"title\": \"Two\"}");
             const struct utimbuf times{seconds, seconds};
             ::utime(QFile::encodeName(path).constData(), &times);
         },
         true},
        {"an atomic replacement",
         [](const QDir &d) {
             write(d.filePath(QStringLiteral("objects/one.json.tmp")), "{\"title\": \"New\"}");
             QFile::remove(d.filePath(QStringLiteral("objects/one.json")));
             QFile::rename(d.filePath(QStringLiteral("objects/one.json.tmp")),
                           d.filePath(QStringLiteral("objects/one.json")));
         },
         true},
    };
    for (const OutsideEdit &edit : edits) {
        SCOPED_TRACE(edit.name);
        QTemporaryDir dir;
        const QDir root(dir.path());
        write(root.filePath(QStringLiteral("project.json")), "{\"name\": \"A\"}");
        write(root.filePath(QStringLiteral("objects/one.json")), "{\"title\": \"One\"}");
        write(root.filePath(QStringLiteral("assets/map.png")), "png");
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
    report.written.insert(QStringLiteral("objects/two.json"), "{\"title\": \"Two\"}");
    report.removed.append(QStringLiteral("objects/one.json"));
    write(m_root.filePath(QStringLiteral("objects/two.json")), "{\"title\": \"Two\"}");
    QFile::remove(m_root.filePath(QStringLiteral("objects/one.json")));
    snapshot.update(m_dir.path(), report);
    EXPECT_FALSE(snapshot.hasChanged(m_dir.path()));
    // An outside edit right after this process's own write is still seen.
    write(m_root.filePath(QStringLiteral("objects/two.json")), "{\"title\": \"Owt\"}");
    EXPECT_TRUE(snapshot.hasChanged(m_dir.path()));
}

INSTANTIATE_TEST_SUITE_P(BothDetections, FolderSnapshotTest,
                         ::testing::Values(FolderSnapshot::Detection::KernelReports,
                                           FolderSnapshot::Detection::FullScan));

} // namespace
