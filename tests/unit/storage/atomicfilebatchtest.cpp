#include "support/printers.h"

#include "storage/atomicfilebatch.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>

#include <unistd.h>

using fb::app::AtomicFileBatch;
using fb::app::TargetExpectation;

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
        ASSERT_TRUE(batch.commit().isSaved());
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

TargetExpectation asNow(const QString &path)
{
    const auto contents = fb::app::readFileContents(path);
    if (!contents || !*contents)
        return {};
    return {(*contents)->status, fb::app::journalDigest((*contents)->bytes)};
}

TEST(AtomicFileBatch, RefusesToReplaceATargetThatChangedSinceItWasRead)
{
    struct Case
    {
        const char *name;
        std::function<void(const QDir &)> outsideEdit;
        const char *messageStart;
    };
    const Case cases[] = {
        {"rewritten", [](const QDir &d) { write(d.filePath(QStringLiteral("b.json")), "theirs, longer"); },
         "Another program changed "},
        {"removed", [](const QDir &d) { QFile::remove(d.filePath(QStringLiteral("b.json"))); },
         "Another program removed "},
        {"created", [](const QDir &d) { write(d.filePath(QStringLiteral("c.json")), "theirs"); },
         "Another program created "},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        QTemporaryDir dir;
        const QDir root(dir.path());
        write(root.filePath(QStringLiteral("a.json")), "old a");
        write(root.filePath(QStringLiteral("b.json")), "old b");
        AtomicFileBatch batch;
        ASSERT_TRUE(batch.stage(root.filePath(QStringLiteral("a.json")), "new a", asNow(root.filePath(QStringLiteral("a.json")))));
        ASSERT_TRUE(batch.stage(root.filePath(QStringLiteral("b.json")), "new b", asNow(root.filePath(QStringLiteral("b.json")))));
        ASSERT_TRUE(batch.stage(root.filePath(QStringLiteral("c.json")), "new c", TargetExpectation{}));
        c.outsideEdit(root);
        QStringList before = root.entryList(QDir::Files | QDir::Hidden);
        before.removeIf([](const QString &name) { return name.endsWith(QStringLiteral(".saving")); });

        const fb::app::SaveOutcome outcome = batch.commit(dir.path());
        EXPECT_TRUE(outcome.isRefused());
        EXPECT_TRUE(outcome.message.startsWith(QString::fromLatin1(c.messageStart))) << outcome.message.toStdString();
        EXPECT_EQ(read(root.filePath(QStringLiteral("a.json"))), "old a");
        // No temporary file and no journal is left behind.
        EXPECT_EQ(root.entryList(QDir::Files | QDir::Hidden), before);
    }
}

// A batch of two renames that a crash cut after the first: the journal, the staged file of the
// second and the first already in place, as AtomicFileBatch leaves them.
TEST(AtomicFileBatch, FinishesABatchACrashInterruptedUnlessAnotherProgramMovedOn)
{
    for (const bool changedSince : {false, true}) {
        SCOPED_TRACE(changedSince ? "second target changed after the crash" : "untouched since");
        QTemporaryDir dir;
        const QDir root(dir.path());
        ASSERT_TRUE(root.mkdir(QStringLiteral("objects")));
        write(root.filePath(QStringLiteral("objects/a.json")), "new a");
        write(root.filePath(QStringLiteral("objects/b.json")), "old b");
        write(root.filePath(QStringLiteral("objects/gone.json")), "old gone");
        const QString staged = QStringLiteral("objects/b.json.2147483000-2.saving");
        write(root.filePath(staged), "new b");
        const QJsonArray operations{
            QJsonObject{{"target", "objects/a.json"}, {"staged", "objects/a.json.2147483000-1.saving"},
                        {"before", QString::fromLatin1(fb::app::journalDigest("old a"))}},
            QJsonObject{{"target", "objects/b.json"}, {"staged", staged},
                        {"before", QString::fromLatin1(fb::app::journalDigest("old b"))}},
            QJsonObject{{"target", "objects/gone.json"},
                        {"before", QString::fromLatin1(fb::app::journalDigest("old gone"))}},
        };
        write(root.filePath(QStringLiteral(".fablery-mcp-journal")),
              QJsonDocument(QJsonObject{{"process", 2147483000}, {"operations", operations}}).toJson());
        if (changedSince)
            write(root.filePath(QStringLiteral("objects/b.json")), "theirs");

        fb::app::recoverInterruptedBatch(dir.path());
        EXPECT_EQ(read(root.filePath(QStringLiteral("objects/a.json"))), "new a");
        EXPECT_EQ(read(root.filePath(QStringLiteral("objects/b.json"))), changedSince ? "theirs" : "new b");
        EXPECT_FALSE(QFile::exists(root.filePath(QStringLiteral("objects/gone.json"))));
        EXPECT_FALSE(QFile::exists(root.filePath(staged)));
        EXPECT_FALSE(QFile::exists(root.filePath(QStringLiteral(".fablery-mcp-journal"))));
    }
}

} // namespace
