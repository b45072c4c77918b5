#include "support/toolfixture.h"

#include "core/document.h"
#include "core/project.h"

using fb::test::ToolFixture;

namespace {

using Args = QJsonObject;

class EditingTools : public ToolFixture
{
protected:
    const fb::core::Document *document(const char *title)
    {
        for (const auto *document : workspace().project().objectsOfType<fb::core::Document>()) {
            if (document->title() == QString::fromUtf8(title))
                return document;
        }
        return nullptr;
    }
};

TEST_F(EditingTools, CreatesDocumentsAfterTheirSiblings)
{
    EXPECT_EQ(ok(QStringLiteral("create_document"),
                 {{QStringLiteral("title"), QStringLiteral("  Epilogue ")},
                  {QStringLiteral("kind"), QStringLiteral(" NOTE ")},
                  {QStringLiteral("body"), QStringLiteral("The end.")}}),
              QStringLiteral("Created the note document 'Epilogue' at the top level (8 characters)."));
    for (const char *title : {"One", "Two", "Three"}) {
        ok(QStringLiteral("create_document"), {{QStringLiteral("title"), QString::fromUtf8(title)},
                                               {QStringLiteral("parent"), QStringLiteral("the archive")}});
    }
    EXPECT_EQ(document("One")->sortIndex(), 1);
    EXPECT_EQ(document("Two")->sortIndex(), 2);
    EXPECT_EQ(document("Three")->sortIndex(), 3);
    EXPECT_EQ(document("Three")->parentId(), document("The Archive")->id());
    EXPECT_EQ(document("Epilogue")->sortIndex(), 4);
}

TEST_F(EditingTools, RefusesABadCreationAndChangesNothing)
{
    const auto before = files();
    const struct
    {
        Args arguments;
        QString message;
    } cases[] = {
        {{{QStringLiteral("title"), QStringLiteral("   ")}},
         QStringLiteral("create_document needs a non-empty \"title\".")},
        {{{QStringLiteral("title"), QStringLiteral(" the ferry")}},
         QStringLiteral("A document titled 'the ferry' already exists; choose a distinct title so "
                        "each document stays addressable by name.")},
        // Excluded documents still hold their title.
        {{{QStringLiteral("title"), QStringLiteral("Private journal")}},
         QStringLiteral("A document titled 'Private journal' already exists; choose a distinct "
                        "title so each document stays addressable by name.")},
        {{{QStringLiteral("title"), QStringLiteral("New")}, {QStringLiteral("kind"), QStringLiteral(" Poem ")}},
         QStringLiteral("Unknown document kind 'Poem' (use prose, note, or screenplay).")},
        {{{QStringLiteral("title"), QStringLiteral("New")}, {QStringLiteral("parent"), QStringLiteral("Nowhere")}},
         QStringLiteral("No document titled 'Nowhere' exists.")},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.message.toStdString());
        EXPECT_EQ(fails(QStringLiteral("create_document"), c.arguments), c.message);
    }
    EXPECT_EQ(files(), before);
    EXPECT_EQ(ok(QStringLiteral("get_recent_changes")), QStringLiteral("No changes this session."));
}

TEST_F(EditingTools, UpdatesOnlyTheKeysPassedAsOneStep)
{
    const auto before = files();
    EXPECT_EQ(ok(QStringLiteral("update_document"),
                 {{QStringLiteral("title"), QStringLiteral("Dust")},
                  {QStringLiteral("parent"), QStringLiteral("")},
                  {QStringLiteral("word_count_target"), 0},
                  {QStringLiteral("point_of_view"), QStringLiteral("Tobin")},
                  {QStringLiteral("status"), QStringLiteral("")},
                  {QStringLiteral("synopsis"), QStringLiteral("Shelves.")},
                  {QStringLiteral("body"), QStringLiteral("Dust.")},
                  {QStringLiteral("kind"), QStringLiteral("screenplay")},
                  {QStringLiteral("new_title"), QStringLiteral(" Motes ")}}),
              QStringLiteral("Updated 'Dust': renamed to 'Motes', kind set to screenplay, body "
                             "replaced (5 characters), synopsis set, status cleared, point of view "
                             "set to 'Tobin', word-count target cleared, moved under the top level."));
    const fb::core::Document *motes = document("Motes");
    ASSERT_TRUE(motes);
    EXPECT_TRUE(motes->parentId().isNull());
    EXPECT_EQ(motes->sortIndex(), 4);
    EXPECT_EQ(ok(QStringLiteral("undo_last")), QStringLiteral("Undid the last change."));
    EXPECT_EQ(files(), before);
}

TEST_F(EditingTools, RefusesABadUpdateAndChangesNothing)
{
    const auto before = files();
    const Args dust{{QStringLiteral("title"), QStringLiteral("Dust")}};
    const auto with = [&](const Args &base, const char *key, const QJsonValue &value) {
        Args arguments = base;
        arguments.insert(QString::fromUtf8(key), value);
        return arguments;
    };
    const QString badTarget =
        QStringLiteral("\"word_count_target\" must be a non-negative integer (0 clears the target).");
    const struct
    {
        Args arguments;
        QString message;
    } cases[] = {
        {dust, QStringLiteral("update_document changes nothing without at least one of \"new_title\", "
                              "\"body\", \"synopsis\", \"status\", \"point_of_view\", "
                              "\"word_count_target\", \"kind\", or \"parent\".")},
        {with(dust, "new_title", QStringLiteral(" ")), QStringLiteral("\"new_title\" must not be empty.")},
        {with(dust, "word_count_target", -5), badTarget},
        {with(dust, "word_count_target", 2.5), badTarget},
        {with(dust, "word_count_target", QStringLiteral("10")), badTarget},
        {with(with(dust, "body", QStringLiteral("lost")), "kind", QStringLiteral("poem")),
         QStringLiteral("Unknown document kind 'poem' (use prose, note, or screenplay).")},
        {with({{QStringLiteral("title"), QStringLiteral("Arrival")}}, "parent", QStringLiteral("The Ferry")),
         QStringLiteral("'Arrival' cannot be moved under 'The Ferry' -- that would place the "
                        "document inside its own subtree.")},
        {with({{QStringLiteral("title"), QStringLiteral("Arrival")}}, "parent_id",
              QStringLiteral("6f1c0a52-0000-4000-8000-000000000001")),
         QStringLiteral("'Arrival' cannot be moved under 'Arrival' -- that would place the "
                        "document inside its own subtree.")},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.message.toStdString());
        EXPECT_EQ(fails(QStringLiteral("update_document"), c.arguments), c.message);
    }
    EXPECT_EQ(files(), before);
}

TEST_F(EditingTools, AppendsInTheBodysOwnFormat)
{
    EXPECT_EQ(ok(QStringLiteral("append_to_document"),
                 {{QStringLiteral("title"), QStringLiteral("Letter")},
                  {QStringLiteral("text"), QStringLiteral("Yours, <M>\n& always\n\n\nP.S. Burn this.")}}),
              QStringLiteral("Appended 7 word(s) to 'Letter'."));
    EXPECT_TRUE(document("Letter")->body().endsWith(
        QStringLiteral("<p>Dear Tobin, the lantern &amp;lt; is lit.</p>\n<p>Yours, &lt;M&gt;<br />&amp; "
                       "always</p>\n<p>P.S. Burn this.</p>\n</body></html>")));

    ok(QStringLiteral("append_to_document"), {{QStringLiteral("title"), QStringLiteral("The Archive")},
                                              {QStringLiteral("text"), QStringLiteral("First line.")}});
    EXPECT_EQ(document("The Archive")->body(), QStringLiteral("First line."));
    ok(QStringLiteral("append_to_document"), {{QStringLiteral("title"), QStringLiteral("The Archive")},
                                              {QStringLiteral("text"), QStringLiteral("Second.")}});
    EXPECT_EQ(document("The Archive")->body(), QStringLiteral("First line.\n\nSecond."));
    EXPECT_EQ(fails(QStringLiteral("append_to_document"),
                    {{QStringLiteral("title"), QStringLiteral("Dust")}, {QStringLiteral("text"), QStringLiteral(" \n ")}}),
              QStringLiteral("append_to_document needs non-empty \"text\"."));
}

} // namespace
