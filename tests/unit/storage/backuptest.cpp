#include "storage/backup.h"

#include "storage/zip/zipreader.h"
#include "support/printers.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using fb::app::writeBackup;

namespace {

void writeFile(const QString &path, const QByteArray &data)
{
    ASSERT_TRUE(QDir().mkpath(QFileInfo(path).absolutePath()));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(data), data.size());
}

QStringList archivedNames(const QString &archivePath)
{
    QFile file(archivePath);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const auto directory = fb::app::readZipDirectory(file.readAll());
    if (!directory)
        return {};
    QStringList names;
    for (const fb::app::ZipDirectoryEntry &entry : *directory)
        names.append(entry.name);
    return names;
}

QString stamp(int n)
{
    return u"20240101-120000%1"_s.arg(n, 3, 10, QChar(u'0'));
}

QStringList backupsIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files, QDir::Name);
}

class Backup : public ::testing::Test
{
protected:
    void SetUp() override { writeFile(m_project.filePath(u"project.json"_s), "{}"); }

    QString backupFolder() const { return m_data.filePath(u"backups/Harbour"_s); }

    QTemporaryDir m_project;
    QTemporaryDir m_data;
};

TEST_F(Backup, ArchivesVisibleFilesOnly)
{
    writeFile(m_project.filePath(u"objects/a.json"_s), "a");
    writeFile(m_project.filePath(u"objects/.cache"_s), "c");
    writeFile(m_project.filePath(u".git/config"_s), "g");
    // A backup folder inside the project never ends up in the next backup.
    const QString inside = m_project.filePath(u"backups"_s);
    ASSERT_TRUE(writeBackup(m_project.path(), inside, u"Harbour"_s, stamp(1), 15));

    const auto result = writeBackup(m_project.path(), inside, u"Harbour"_s, stamp(2), 15);
    ASSERT_TRUE(result) << result.error().toStdString();
    EXPECT_EQ(result->archivePath, inside + u"/Harbour-20240101-120000002.fbbackup"_s);
    EXPECT_EQ(result->prunedCount, 0);
    EXPECT_EQ(archivedNames(result->archivePath),
              QStringList({u"objects/a.json"_s, u"project.json"_s}));
}

TEST_F(Backup, FailsWithoutFilesToBackUp)
{
    QTemporaryDir hiddenOnly;
    writeFile(hiddenOnly.filePath(u".settings.json"_s), "{}");
    writeFile(hiddenOnly.filePath(u".trash/old.json"_s), "{}");
    const QString missing = m_project.filePath(u"missing"_s);
    for (const QString &folder : {hiddenOnly.path(), missing}) {
        SCOPED_TRACE(folder.toStdString());
        EXPECT_FALSE(writeBackup(folder, backupFolder(), u"Harbour"_s, stamp(1), 15));
        EXPECT_TRUE(backupsIn(backupFolder()).isEmpty());
    }
}

TEST_F(Backup, KeepsTheMostRecentBackups)
{
    struct Case
    {
        const char *name;
        int retention;
        int pruned;
        int kept;
    };
    const Case cases[] = {{"retention 15", 15, 1, 15},
                          {"retention 3", 3, 13, 3},
                          {"retention 0 prunes nothing", 0, 0, 16}};
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        QTemporaryDir data;
        const QString folder = data.filePath(u"backups/Harbour"_s);
        for (int i = 1; i <= 15; ++i)
            ASSERT_TRUE(writeBackup(m_project.path(), folder, u"Harbour"_s, stamp(i), 100));

        const auto result = writeBackup(m_project.path(), folder, u"Harbour"_s, stamp(16),
                                        c.retention);
        ASSERT_TRUE(result);
        EXPECT_EQ(result->prunedCount, c.pruned);
        const QStringList left = backupsIn(folder);
        EXPECT_EQ(left.size(), c.kept);
        EXPECT_EQ(left.last(), u"Harbour-%1.fbbackup"_s.arg(stamp(16)));
        EXPECT_EQ(left.first(), u"Harbour-%1.fbbackup"_s.arg(stamp(17 - c.kept)));
    }
}

TEST_F(Backup, NeverPrunesAnotherProjectsBackups)
{
    for (int i = 1; i <= 15; ++i)
        ASSERT_TRUE(writeBackup(m_project.path(), backupFolder(), u"Harbour"_s, stamp(i), 15));
    for (int i = 1; i <= 16; ++i)
        ASSERT_TRUE(writeBackup(m_project.path(), backupFolder(), u"Lighthouse"_s, stamp(i), 15));

    const QStringList left = backupsIn(backupFolder());
    EXPECT_EQ(left.filter(u"Harbour-"_s).size(), 15);
    EXPECT_EQ(left.filter(u"Lighthouse-"_s).size(), 15);
}

TEST_F(Backup, NeverPrunesTheBackupJustWritten)
{
    // A clock set back an hour makes the newest backup sort before the older ones.
    for (int i = 5; i <= 6; ++i)
        ASSERT_TRUE(writeBackup(m_project.path(), backupFolder(), u"Harbour"_s, stamp(i), 2));

    const auto result = writeBackup(m_project.path(), backupFolder(), u"Harbour"_s, stamp(1), 2);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->prunedCount, 1);
    EXPECT_EQ(backupsIn(backupFolder()), QStringList({u"Harbour-%1.fbbackup"_s.arg(stamp(1)),
                                                      u"Harbour-%1.fbbackup"_s.arg(stamp(6))}));
}

} // namespace
