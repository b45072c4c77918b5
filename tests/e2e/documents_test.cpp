#include "support/serverprocess.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

using fb::test::ScratchProject;
using fb::test::ServerProcess;

namespace {

using Args = QJsonObject;

// The manuscript tools over the wire, where a fault would cost a writer text.
class DocumentsOverTheWire : public ::testing::Test
{
protected:
    ScratchProject m_project{u"projects/novel"_s};
    ServerProcess m_server{{m_project.path()}};
};

TEST_F(DocumentsOverTheWire, UndoesAReplacementAcrossDocumentsInOneStep)
{
    const auto before = fb::test::folderContents(m_project.path());
    const auto replaced = m_server.call(u"find_replace"_s,
                                        {{u"find"_s, u"lantern"_s}, {u"replace"_s, u"lamp"_s}});
    ASSERT_FALSE(replaced.isError);
    EXPECT_TRUE(
        replaced.text.startsWith(u"Replaced 3 match(es) of 'lantern' across 2 document(s)"_s));
    EXPECT_NE(fb::test::folderContents(m_project.path()), before);
    EXPECT_EQ(m_server.call(u"undo_last"_s).text, u"Undid the last change."_s);
    EXPECT_EQ(fb::test::folderContents(m_project.path()), before);
}

TEST_F(DocumentsOverTheWire, NeverShowsExcludedDocumentsOrTheirScenes)
{
    // "Private Journal" is excluded from AI; "Secret Scene" lies below it.
    const auto tree = m_server.call(u"get_manuscript_tree"_s);
    const auto found = m_server.call(u"find_replace"_s, {{u"find"_s, u"lantern"_s}});
    const auto scene = m_server.call(u"get_document"_s, {{u"title"_s, u"Secret Scene"_s}});
    for (const QString &text : {tree.text, found.text}) {
        EXPECT_FALSE(text.contains(u"Private Journal"_s)) << text.toStdString();
        EXPECT_FALSE(text.contains(u"Secret Scene"_s)) << text.toStdString();
    }
    EXPECT_TRUE(m_server.call(u"get_document"_s, {{u"title"_s, u"Private Journal"_s}}).isError);
    EXPECT_EQ(scene.text, u"'Secret Scene' is excluded from AI."_s);
}

} // namespace
