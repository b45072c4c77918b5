// Two servers on one project, as two AI applications open at once would start them, with their
// calls overlapping: each change either server acknowledged is in the project afterwards.
//
// FB_TWO_SERVERS_CALLS sets the number of changes each server makes.

#include "core/document.h"
#include "pipedserver.h"
#include "storage/folderarchive.h"
#include "support/parameternames.h"
#include "support/serverprocess.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QSet>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

using fb::test::PipedServer;
using fb::test::ScratchProject;

namespace {

int environmentNumber(const char *name, int fallback)
{
    bool ok = false;
    const int value = qEnvironmentVariableIntValue(name, &ok);
    return ok ? value : fallback;
}

class TwoServers : public ::testing::TestWithParam<bool>
{};

TEST_P(TwoServers, LoseNoAcknowledgedChange)
{
    const bool isBundle = GetParam();
    ScratchProject scratch(u"projects/novel"_s);
    QTemporaryDir dataHome;
    QString project = scratch.path();
    if (isBundle) {
        project = scratch.root() + u"/shared.fablery"_s;
        QFile bundle(project);
        ASSERT_TRUE(bundle.open(QIODevice::WriteOnly));
        bundle.write(*fb::app::packFolder(scratch.path()));
    }
    const int calls = environmentNumber("FB_TWO_SERVERS_CALLS", 60);

    PipedServer first(project, dataHome.path());
    PipedServer second(project, dataHome.path());
    ASSERT_TRUE(first.isStarted() && second.isStarted());
    // Both write their whole stream of changes ahead, so the two run side by side.
    for (int call = 0; call < calls; ++call) {
        first.sendCall(call, u"create_document"_s, {{u"title"_s, u"First %1"_s.arg(call)}});
        second.sendCall(call, u"create_document"_s, {{u"title"_s, u"Second %1"_s.arg(call)}});
    }
    EXPECT_EQ(first.finish(), 0);
    EXPECT_EQ(second.finish(), 0);

    QSet<QString> acknowledged;
    int refused = 0;
    for (auto [server, name] : {std::pair{&first, u"First"_s}, std::pair{&second, u"Second"_s}}) {
        const auto answers = server->answers();
        EXPECT_EQ(answers.size(), calls) << name.toStdString();
        for (auto it = answers.cbegin(); it != answers.cend(); ++it) {
            if (it->isError)
                ++refused;
            else
                acknowledged.insert(u"%1 %2"_s.arg(name).arg(it.key()));
        }
    }
    std::printf("%lld of %d changes acknowledged, %d refused\n",
                static_cast<long long>(acknowledged.size()), 2 * calls, refused);
    // Taking turns, neither server has a reason to refuse the other's.
    EXPECT_EQ(refused, 0);

    auto onDisk = fb::test::readProjectOnDisk(project);
    ASSERT_TRUE(onDisk) << onDisk.error().toStdString();
    QSet<QString> titles;
    for (const fb::core::Document *document : (*onDisk)->objectsOfType<fb::core::Document>())
        titles.insert(document->title());
    for (const QString &title : std::as_const(acknowledged))
        EXPECT_TRUE(titles.contains(title)) << "lost: " << title.toStdString();
}

INSTANTIATE_TEST_SUITE_P(FolderAndBundle, TwoServers, ::testing::Bool(), fb::test::folderOrBundle);

} // namespace
