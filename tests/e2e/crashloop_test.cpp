// The server is killed at random moments while it works through a stream of changes, some of
// which rewrite several documents at once, and started again. Every change it acknowledged must
// be on disk afterwards, and no change of several files may be found half done.
//
// FB_CRASH_KILLS sets the number of kills (a short run by default); FB_CRASH_SEED fixes the
// random moments.

#include "core/document.h"
#include "pipedserver.h"
#include "storage/folderarchive.h"
#include "support/parameternames.h"
#include "support/serverprocess.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <random>

using namespace Qt::StringLiterals;

using fb::test::PipedServer;
using fb::test::ScratchProject;

namespace {

constexpr int ledgerCount = 6;
constexpr int callsPerRound = 8;

int environmentNumber(const char *name, int fallback)
{
    bool ok = false;
    const int value = qEnvironmentVariableIntValue(name, &ok);
    return ok ? value : fallback;
}

QString ledgerTitle(int n)
{
    return u"Ledger %1"_s.arg(n);
}

// The token every ledger document carries: one replacement across all of them changes it.
QString tokenOf(const fb::core::Document &document)
{
    const qsizetype at = document.body().indexOf(u"token-"_s);
    return at < 0 ? QString() : document.body().mid(at).section(u' ', 0, 0).trimmed();
}

class CrashLoop : public ::testing::TestWithParam<bool>
{
protected:
    bool isBundle() const { return GetParam(); }

    void SetUp() override
    {
        m_scratch = std::make_unique<ScratchProject>(u"projects/novel"_s);
        m_project = m_scratch->path();
        if (isBundle()) {
            m_project = m_scratch->root() + u"/crash.fablery"_s;
            QFile bundle(m_project);
            ASSERT_TRUE(bundle.open(QIODevice::WriteOnly));
            bundle.write(*fb::app::packFolder(m_scratch->path()));
        }
        PipedServer server(m_project, m_dataHome.path());
        for (int n = 1; n <= ledgerCount; ++n) {
            const auto created = server.call(u"create_document"_s,
                                             {{u"title"_s, ledgerTitle(n)},
                                              {u"body"_s, u"Entry token-start here."_s}});
            ASSERT_FALSE(created.isError) << created.text.toStdString();
        }
        ASSERT_EQ(server.finish(), 0);
        m_allowedTokens = {u"token-start"_s};
    }

    // What a server started after the kill finds: every acknowledged document, and the ledger in
    // one state that some sequence of the sent replacements explains.
    void checkProjectOnDisk()
    {
        auto project = fb::test::readProjectOnDisk(m_project);
        ASSERT_TRUE(project) << project.error().toStdString();
        QHash<QString, const fb::core::Document *> byTitle;
        for (const fb::core::Document *document : (*project)->objectsOfType<fb::core::Document>())
            byTitle.insert(document->title(), document);
        for (const QString &title : std::as_const(m_acknowledged))
            EXPECT_TRUE(byTitle.contains(title)) << "lost: " << title.toStdString();
        QSet<QString> tokens;
        for (int n = 1; n <= ledgerCount; ++n) {
            ASSERT_TRUE(byTitle.contains(ledgerTitle(n)));
            tokens.insert(tokenOf(*byTitle.value(ledgerTitle(n))));
        }
        ASSERT_EQ(tokens.size(), 1) << "a replacement across the ledger was torn";
        m_currentToken = *tokens.begin();
        EXPECT_TRUE(m_allowedTokens.contains(m_currentToken))
            << "unexpected ledger state " << m_currentToken.toStdString();
        if (!isBundle()) {
            // A restarted server leaves neither temporary files nor a journal behind.
            QDirIterator it(m_project, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
            while (it.hasNext()) {
                const QString path = it.next();
                EXPECT_FALSE(path.endsWith(u".saving"_s) || path.endsWith(u"journal"_s))
                    << path.toStdString();
            }
        }
    }

    std::unique_ptr<ScratchProject> m_scratch;
    QTemporaryDir m_dataHome;
    QString m_project;
    QSet<QString> m_acknowledged;
    QSet<QString> m_allowedTokens;
    QString m_currentToken;
};

TEST_P(CrashLoop, KeepsEveryAcknowledgedChangeWhole)
{
    const int kills = environmentNumber("FB_CRASH_KILLS", 12);
    const unsigned seed = unsigned(environmentNumber("FB_CRASH_SEED", int(std::random_device()())));
    SCOPED_TRACE(u"FB_CRASH_SEED=%1"_s.arg(seed).toStdString());
    std::mt19937 random(seed);

    int interruptedBatches = 0;
    int acknowledgedReplacements = 0;
    for (int round = 0; round < kills; ++round) {
        SCOPED_TRACE(round);
        // A journal left behind means the kill cut a save of several files half way.
        if (QFileInfo::exists(m_project + u"/.fablery-mcp-journal"_s))
            ++interruptedBatches;
        // Now and then the working copy is gone, so the open has to unpack the bundle and may be
        // killed half way.
        if (isBundle() && round % 3 == 2)
            QDir(m_dataHome.filePath(u"Tallowick Works/Fablery MCP/workingcopies-mcp"_s))
                .removeRecursively();

        {
            PipedServer server(m_project, m_dataHome.path());
            ASSERT_TRUE(server.isStarted());
            // The restarted server has opened the project (finishing any interrupted save) once it
            // answers.
            ASSERT_FALSE(server.call(u"get_recent_changes"_s).text.isEmpty())
                << server.standardError().toStdString();
            checkProjectOnDisk();
            if (::testing::Test::HasFatalFailure())
                return;

            QStringList tokens;
            for (int call = 0; call < callsPerRound; ++call) {
                const int id = 2 * call;
                server.sendCall(id, u"create_document"_s,
                                {{u"title"_s, u"Crash %1-%2"_s.arg(round).arg(call)}});
                tokens.append(u"token-%1-%2"_s.arg(round).arg(call));
                server.sendCall(id + 1, u"find_replace"_s,
                                {{u"find"_s, u"token-[0-9a-z-]+"_s},
                                 {u"replace"_s, tokens.last()},
                                 {u"regex"_s, true}});
            }
            QThread::msleep(std::uniform_int_distribution<int>(0, 150)(random));
            server.kill();

            const auto answers = server.answers();
            int lastReplacement = -1;
            for (int call = 0; call < callsPerRound; ++call) {
                if (answers.contains(2 * call) && !answers.value(2 * call).isError)
                    m_acknowledged.insert(u"Crash %1-%2"_s.arg(round).arg(call));
                if (answers.contains(2 * call + 1) && !answers.value(2 * call + 1).isError) {
                    lastReplacement = call;
                    ++acknowledgedReplacements;
                }
            }
            // Any replacement sent after the last acknowledged one may have reached the disk too.
            QSet<QString> allowed(tokens.cbegin() + std::max(lastReplacement, 0), tokens.cend());
            if (lastReplacement < 0)
                allowed.insert(m_currentToken);
            m_allowedTokens = allowed;
        }
    }
    std::printf("%d kills: %lld documents and %d replacements across the ledger acknowledged, "
                "%d saves of several files interrupted and finished at the next start\n",
                kills, static_cast<long long>(m_acknowledged.size()), acknowledgedReplacements,
                interruptedBatches);
    PipedServer last(m_project, m_dataHome.path());
    ASSERT_FALSE(last.call(u"get_recent_changes"_s).text.isEmpty());
    checkProjectOnDisk();
    EXPECT_EQ(last.finish(), 0);
}

INSTANTIATE_TEST_SUITE_P(FolderAndBundle, CrashLoop, ::testing::Bool(), fb::test::folderOrBundle);

} // namespace
