#include "support/serverprocess.h"

#include <QDir>
#include <QJsonArray>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using fb::test::ServerProcess;

using namespace Qt::StringLiterals;

namespace {

// The codex test project and its library side by side, as the project's relative mount path
// "../codexlibrary" expects them.
class CodexServer : public ::testing::Test
{
protected:
    void SetUp() override
    {
        for (const char *name : {"codex", "codexlibrary"}) {
            ASSERT_TRUE(fb::test::copyFolder(QStringLiteral(FB_TEST_DATA_DIR "/projects/")
                                                 + QString::fromUtf8(name),
                                             m_root.filePath(QString::fromUtf8(name))));
        }
    }

    QString project() const { return m_root.filePath(u"codex"_s); }
    QMap<QString, QByteArray> golden() const
    {
        return fb::test::folderContents(QStringLiteral(FB_TEST_DATA_DIR "/projects/codex"));
    }

    QTemporaryDir m_root;
};

TEST_F(CodexServer, ListsTheCategoryAndEntityToolsInOrder)
{
    ServerProcess server({project()});
    const QJsonObject answer = server.request(
        QJsonObject{{u"jsonrpc"_s, u"2.0"_s}, {u"id"_s, 1}, {u"method"_s, u"tools/list"_s}});
    QStringList names;
    for (const QJsonValue &tool : answer[u"result"_s][u"tools"_s].toArray())
        names.append(tool[u"name"_s].toString());
    const QStringList codex{
        u"get_category"_s,  u"list_category"_s,  u"create_category"_s,  u"update_category"_s,
        u"add_field"_s,     u"remove_field"_s,   u"move_field"_s,       u"get_entity"_s,
        u"create_entity"_s, u"update_entity"_s,  u"delete_object"_s,    u"merge_entities"_s,
        u"split_entity"_s,  u"set_visibility"_s, u"set_ai_exclusion"_s,
    };
    const qsizetype first = names.indexOf(codex.front());
    ASSERT_GE(first, 0);
    EXPECT_EQ(names.mid(first, codex.size()), codex);
    EXPECT_EQ(server.finish(), 0);
}

TEST_F(CodexServer, MergesAndUndoesOnDiskAndReadsTheLibrary)
{
    ServerProcess server({project()});
    const auto drowned = server.call(u"get_entity"_s, {{u"name"_s, u"The Drowned God"_s}});
    EXPECT_FALSE(drowned.isError);
    EXPECT_TRUE(drowned.text.startsWith(
        u"# The Drowned God (Deities)\nFrom the mounted library 'World Lore'.\n"));

    const auto refused = server.call(u"update_entity"_s, {{u"entity"_s, u"Pell"_s},
                                                          {u"new_name"_s, u"Young Pell"_s},
                                                          {u"born"_s, u"someday"_s}});
    EXPECT_TRUE(refused.isError);
    EXPECT_EQ(fb::test::folderContents(project()), golden());

    const auto merged = server.call(u"merge_entities"_s, {{u"source"_s, u"The Smuggler"_s},
                                                          {u"target"_s, u"Jory Rusk"_s}});
    EXPECT_EQ(merged.text,
              u"Merged 'The Smuggler' into 'Jory Rusk', re-pointing 13 reference(s)."_s);
    EXPECT_NE(fb::test::folderContents(project()), golden());
    EXPECT_FALSE(server.call(u"undo_last"_s).isError);
    EXPECT_EQ(fb::test::folderContents(project()), golden());
    EXPECT_EQ(server.finish(), 0);
}

} // namespace
