// Every tool that reads the project follows one rule of what the agent may see. The tricky
// project holds an excluded chapter with a scene below it that is not excluded itself, a scene
// whose parent is missing, an excluded character referenced by a visible one, and a comment on
// the withheld scene.

#include "support/toolfixture.h"

#include <QJsonDocument>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class VisibilityRule : public fb::test::ToolFixture
{
protected:
    VisibilityRule()
        : ToolFixture(u"projects/tricky"_s)
    {}
};

// What the agent must never read: the withheld objects' names and what they hold.
const QStringList secrets{u"Sealed Chapter"_s, u"Buried Scene"_s, u"Quill Vantor"_s,
                          u"sealed truth"_s,   u"buried scene"_s, u"Whisper"_s,
                          u"the heir"_s,       u"lit in secret"_s};

TEST_F(VisibilityRule, EveryReadingToolWithholdsTheSameObjects)
{
    const struct
    {
        QString tool;
        QJsonObject arguments;
    } reads[] = {
        {u"get_manuscript_tree"_s, {}},
        {u"get_document"_s, {{"title", u"Open Chapter"_s}}},
        {u"get_document"_s, {{"title", u"Buried Scene"_s}}},
        {u"search"_s, {{"query", u"lamp"_s}}},
        {u"search"_s, {{"query", u"Quill"_s}}},
        {u"search"_s, {{"query", u"heir"_s}}},
        {u"get_project_overview"_s, {}},
        {u"list_comments"_s, {}},
        {u"list_comments"_s, {{"target", u"Buried Scene"_s}}},
        {u"get_entity"_s, {{"name", u"Mara"_s}}},
        {u"get_entity"_s, {{"name", u"Quill Vantor"_s}}},
        {u"list_category"_s, {{"category", u"People"_s}}},
        {u"get_category"_s, {{"category", u"People"_s}}},
        {u"find_replace"_s, {{"find", u"lamp"_s}}},
        {u"list_footnotes"_s, {{"title", u"Buried Scene"_s}}},
        {u"get_document_versions"_s, {{"title", u"Buried Scene"_s}}},
        {u"manage_variants"_s, {{"title", u"Buried Scene"_s}}},
    };
    for (const auto &read : reads) {
        const QString asked = QString::fromUtf8(QJsonDocument(read.arguments).toJson());
        SCOPED_TRACE((read.tool + u' ' + asked).toStdString());
        const fb::test::ToolReply reply = call(read.tool, read.arguments);
        ASSERT_FALSE(reply.text.isEmpty());
        for (const QString &secret : secrets) {
            // A name the agent typed may be said back; nothing else may be.
            if (!asked.contains(secret, Qt::CaseInsensitive)) {
                EXPECT_FALSE(reply.text.contains(secret, Qt::CaseInsensitive))
                    << secret.toStdString() << " in: " << reply.text.toStdString();
            }
        }
    }
}

// Asked by id, the refusal names the document: the agent holding its id learns only that it is
// withheld, never what it holds.
TEST_F(VisibilityRule, ARefusalByIdNamesTheWithheldDocumentAndNothingMore)
{
    EXPECT_EQ(fails(u"get_document"_s, {{"id", u"7c000000-0000-4000-8000-000000000004"_s}}),
              u"'Buried Scene' is excluded from AI."_s);
}

TEST_F(VisibilityRule, EveryToolSeesADocumentWhoseParentIsMissing)
{
    EXPECT_TRUE(ok(u"get_manuscript_tree"_s).contains(u"- Orphan Scene"_s));
    EXPECT_TRUE(
        ok(u"get_document"_s, {{"title", u"Orphan Scene"_s}}).contains(u"The lamp waits alone."_s));
    EXPECT_TRUE(ok(u"search"_s, {{"query", u"Orphan"_s}}).contains(u"Orphan Scene"_s));
    EXPECT_TRUE(ok(u"find_replace"_s, {{"find", u"alone"_s}}).contains(u"Orphan Scene"_s));
    ok(u"add_comment"_s, {{"target", u"Orphan Scene"_s}, {"body", u"Where does this go?"_s}});
    EXPECT_TRUE(
        ok(u"list_comments"_s, {{"target", u"Orphan Scene"_s}}).contains(u"Where does this go?"_s));
    ok(u"update_document"_s, {{"title", u"Orphan Scene"_s}, {"status", u"Draft"_s}});
}

} // namespace
