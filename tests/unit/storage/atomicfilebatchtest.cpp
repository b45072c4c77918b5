#include "support/printers.h"

#include "storage/atomicfilebatch.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <unistd.h>

using fb::app::AtomicFileBatch;

namespace {

QByteArray read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

TEST(AtomicFileBatch, ReplacesEveryFileOnlyWhenCommitted)
{
    QTemporaryDir dir;
    const QDir root(dir.path());
    write(root.filePath(QStringLiteral("a.json")), "old a");
    {
        AtomicFileBatch batch;
        ASSERT_TRUE(batch.stage(root.filePath(QStringLiteral("a.json")), "new a"));
        ASSERT_TRUE(batch.stage(root.filePath(QStringLiteral("b.json")), "new b"));
        // Nothing is replaced before the commit, and the temporary files are no project files.
        EXPECT_EQ(read(root.filePath(QStringLiteral("a.json"))), "old a");
        EXPECT_EQ(root.entryList({QStringLiteral("*.json")}, QDir::Files).size(), 1);
        ASSERT_TRUE(batch.commit());
    }
    EXPECT_EQ(read(root.filePath(QStringLiteral("a.json"))), "new a");
    EXPECT_EQ(read(root.filePath(QStringLiteral("b.json"))), "new b");
    EXPECT_EQ(root.entryList(QDir::Files), (QStringList{QStringLiteral("a.json"), QStringLiteral("b.json")}));
}

TEST(AtomicFileBatch, LeavesEverythingAsItWasWhenNotCommitted)
{
    QTemporaryDir dir;
    const QDir root(dir.path());
    write(root.filePath(QStringLiteral("a.json")), "old a");
    ASSERT_TRUE(root.mkdir(QStringLiteral("taken.json")));
    {
        AtomicFileBatch batch;
        ASSERT_TRUE(batch.stage(root.filePath(QStringLiteral("a.json")), "new a"));
        const auto refused = batch.stage(root.filePath(QStringLiteral("taken.json")), "x");
        ASSERT_FALSE(refused);
        EXPECT_EQ(refused.error(), QStringLiteral("Cannot write file: %1")
                                       .arg(QDir::toNativeSeparators(root.filePath(QStringLiteral("taken.json")))));
    }
    EXPECT_EQ(read(root.filePath(QStringLiteral("a.json"))), "old a");
    EXPECT_EQ(root.entryList(QDir::Files), QStringList{QStringLiteral("a.json")});
}

TEST(AtomicFileBatch, RemovesOnlyTemporariesOfProcessesThatAreGone)
{
    QTemporaryDir dir;
    const QDir root(dir.path());
    ASSERT_TRUE(root.mkdir(QStringLiteral("objects")));
    // No process has a number this large; this test's own process is running.
    const QString abandoned = root.filePath(QStringLiteral("objects/a.json.2147483000-1.saving"));
    const QString running = root.filePath(QStringLiteral("objects/b.json.%1-1.saving").arg(::getpid()));
    write(abandoned, "half");
    write(running, "busy");
    write(root.filePath(QStringLiteral("objects/c.json")), "kept");
    fb::app::removeAbandonedTemporaries(dir.path());
    EXPECT_FALSE(QFile::exists(abandoned));
    EXPECT_TRUE(QFile::exists(running));
    EXPECT_TRUE(QFile::exists(root.filePath(QStringLiteral("objects/c.json"))));
}

} // namespace
