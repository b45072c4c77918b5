#include "storage/atomicfilebatch.h"

#include "support/printers.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>

#include <unistd.h>

using namespace Qt::StringLiterals;

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
    write(root.filePath(u"a.json"_s), "old a");
    {
        AtomicFileBatch batch;
        ASSERT_TRUE(batch.stage(root.filePath(u"a.json"_s), "new a"));
        ASSERT_TRUE(batch.stage(root.filePath(u"b.json"_s), "new b"));
        // Nothing is replaced before the commit, and the temporary files are no project files.
        EXPECT_EQ(read(root.filePath(u"a.json"_s)), "old a");
        EXPECT_EQ(root.entryList({u"*.json"_s}, QDir::Files).size(), 1);
        ASSERT_TRUE(batch.commit().isSaved());
    }
    EXPECT_EQ(read(root.filePath(u"a.json"_s)), "new a");
    EXPECT_EQ(read(root.filePath(u"b.json"_s)), "new b");
    EXPECT_EQ(root.entryList(QDir::Files), (QStringList{u"a.json"_s, u"b.json"_s}));
}

TEST(AtomicFileBatch, LeavesEverythingAsItWasWhenNotCommitted)
{
    QTemporaryDir dir;
    const QDir root(dir.path());
    write(root.filePath(u"a.json"_s), "old a");
    ASSERT_TRUE(root.mkdir(u"taken.json"_s));
    {
        AtomicFileBatch batch;
        ASSERT_TRUE(batch.stage(root.filePath(u"a.json"_s), "new a"));
        const auto refused = batch.stage(root.filePath(u"taken.json"_s), "x");
        ASSERT_FALSE(refused);
        EXPECT_EQ(refused.error(), u"Cannot write file: %1"_s.arg(
                                       QDir::toNativeSeparators(root.filePath(u"taken.json"_s))));
    }
    EXPECT_EQ(read(root.filePath(u"a.json"_s)), "old a");
    EXPECT_EQ(root.entryList(QDir::Files), QStringList{u"a.json"_s});
}

TEST(AtomicFileBatch, RemovesOnlyTemporariesOfProcessesThatAreGone)
{
    QTemporaryDir dir;
    const QDir root(dir.path());
    ASSERT_TRUE(root.mkdir(u"objects"_s));
    // No process has a number this large; this test's own process is running.
    const QString abandoned = root.filePath(u"objects/a.json.2147483000-1.saving"_s);
    const QString running = root.filePath(u"objects/b.json.%1-1.saving"_s.arg(::getpid()));
    write(abandoned, "half");
    write(running, "busy");
    write(root.filePath(u"objects/c.json"_s), "kept");
    fb::app::removeAbandonedTemporaries(dir.path());
    EXPECT_FALSE(QFile::exists(abandoned));
    EXPECT_TRUE(QFile::exists(running));
    EXPECT_TRUE(QFile::exists(root.filePath(u"objects/c.json"_s)));
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
        {"rewritten", [](const QDir &d) { write(d.filePath(u"b.json"_s), "theirs, longer"); },
         "Another program changed "},
        {"removed", [](const QDir &d) { QFile::remove(d.filePath(u"b.json"_s)); },
         "Another program removed "},
        {"created", [](const QDir &d) { write(d.filePath(u"c.json"_s), "theirs"); },
         "Another program created "},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        QTemporaryDir dir;
        const QDir root(dir.path());
        write(root.filePath(u"a.json"_s), "old a");
        write(root.filePath(u"b.json"_s), "old b");
        AtomicFileBatch batch;
        ASSERT_TRUE(
            batch.stage(root.filePath(u"a.json"_s), "new a", asNow(root.filePath(u"a.json"_s))));
        ASSERT_TRUE(
            batch.stage(root.filePath(u"b.json"_s), "new b", asNow(root.filePath(u"b.json"_s))));
        ASSERT_TRUE(batch.stage(root.filePath(u"c.json"_s), "new c", TargetExpectation{}));
        c.outsideEdit(root);
        QStringList before = root.entryList(QDir::Files | QDir::Hidden);
        before.removeIf([](const QString &name) { return name.endsWith(u".saving"_s); });

        const fb::app::SaveOutcome outcome = batch.commit(dir.path());
        EXPECT_TRUE(outcome.isRefused());
        EXPECT_TRUE(outcome.message.startsWith(QString::fromLatin1(c.messageStart)))
            << outcome.message.toStdString();
        EXPECT_EQ(read(root.filePath(u"a.json"_s)), "old a");
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
        ASSERT_TRUE(root.mkdir(u"objects"_s));
        write(root.filePath(u"objects/a.json"_s), "new a");
        write(root.filePath(u"objects/b.json"_s), "old b");
        write(root.filePath(u"objects/gone.json"_s), "old gone");
        const QString staged = u"objects/b.json.2147483000-2.saving"_s;
        write(root.filePath(staged), "new b");
        const QJsonArray operations{
            QJsonObject{{"target", "objects/a.json"},
                        {"staged", "objects/a.json.2147483000-1.saving"},
                        {"before", QString::fromLatin1(fb::app::journalDigest("old a"))}},
            QJsonObject{{"target", "objects/b.json"},
                        {"staged", staged},
                        {"before", QString::fromLatin1(fb::app::journalDigest("old b"))}},
            QJsonObject{{"target", "objects/gone.json"},
                        {"before", QString::fromLatin1(fb::app::journalDigest("old gone"))}},
        };
        write(root.filePath(u".fablery-mcp-journal"_s),
              QJsonDocument(QJsonObject{{"process", 2147483000}, {"operations", operations}})
                  .toJson());
        if (changedSince)
            write(root.filePath(u"objects/b.json"_s), "theirs");

        fb::app::recoverInterruptedBatch(dir.path());
        EXPECT_EQ(read(root.filePath(u"objects/a.json"_s)), "new a");
        EXPECT_EQ(read(root.filePath(u"objects/b.json"_s)), changedSince ? "theirs" : "new b");
        EXPECT_FALSE(QFile::exists(root.filePath(u"objects/gone.json"_s)));
        EXPECT_FALSE(QFile::exists(root.filePath(staged)));
        EXPECT_FALSE(QFile::exists(root.filePath(u".fablery-mcp-journal"_s)));
    }
}

} // namespace
