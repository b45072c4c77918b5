#include "support/serverprocess.h"

#include <gtest/gtest.h>

using fb::test::ScratchProject;
using fb::test::ServerProcess;

namespace {

using Args = QJsonObject;

// The manuscript tools over the wire, where a fault would cost a writer text.
class DocumentsOverTheWire : public ::testing::Test
{
protected:
    ScratchProject m_project{QStringLiteral("projects/novel")};
    ServerProcess m_server{{m_project.path()}};
};

TEST_F(DocumentsOverTheWire, UndoesAReplacementAcrossDocumentsInOneStep)
{
    const auto before = fb::test::folderContents(m_project.path());
    const auto replaced = m_server.call(QStringLiteral("find_replace"),
                                        {{QStringLiteral("find"), QStringLiteral("lantern")},
                                         {QStringLiteral("replace"), QStringLiteral("lamp")}});
    ASSERT_FALSE(replaced.isError);
    EXPECT_TRUE(replaced.text.startsWith(QStringLiteral("Replaced 3 match(es) of 'lantern' across 2 document(s)")));
    EXPECT_NE(fb::test::folderContents(m_project.path()), before);
    EXPECT_EQ(m_server.call(QStringLiteral("undo_last")).text, QStringLiteral("Undid the last change."));
    EXPECT_EQ(fb::test::folderContents(m_project.path()), before);
}

TEST_F(DocumentsOverTheWire, NeverShowsExcludedDocumentsOrTheirScenes)
{
    // "Private Journal" is excluded from AI; "Secret Scene" lies below it.
    const auto tree = m_server.call(QStringLiteral("get_manuscript_tree"));
    const auto found = m_server.call(QStringLiteral("find_replace"), {{QStringLiteral("find"), QStringLiteral("lantern")}});
    const auto scene = m_server.call(QStringLiteral("get_document"), {{QStringLiteral("title"), QStringLiteral("Secret Scene")}});
    for (const QString &text : {tree.text, found.text}) {
        EXPECT_FALSE(text.contains(QStringLiteral("Private Journal"))) << text.toStdString();
        EXPECT_FALSE(text.contains(QStringLiteral("Secret Scene"))) << text.toStdString();
    }
    EXPECT_TRUE(m_server.call(QStringLiteral("get_document"), {{QStringLiteral("title"), QStringLiteral("Private Journal")}})
                    .isError);
    EXPECT_EQ(scene.text, QStringLiteral("'Secret Scene' is excluded from AI."));
}

} // namespace
