#include "core/document.h"
#include "core/project.h"
#include "support/toolfixture.h"

using namespace Qt::StringLiterals;

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
    EXPECT_EQ(ok(u"create_document"_s, {{u"title"_s, u"  Epilogue "_s},
                                        {u"kind"_s, u" NOTE "_s},
                                        {u"body"_s, u"The end."_s}}),
              u"Created the note document 'Epilogue' at the top level (8 characters)."_s);
    for (const char *title : {"One", "Two", "Three"}) {
        ok(u"create_document"_s,
           {{u"title"_s, QString::fromUtf8(title)}, {u"parent"_s, u"the archive"_s}});
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
        {{{u"title"_s, u"   "_s}}, u"create_document needs a non-empty \"title\"."_s},
        {{{u"title"_s, u" the ferry"_s}},
         u"A document titled 'the ferry' already exists; choose a distinct title so "
         "each document stays addressable by name."_s},
        // Excluded documents still hold their title.
        {{{u"title"_s, u"Private journal"_s}},
         u"A document titled 'Private journal' already exists; choose a distinct "
         "title so each document stays addressable by name."_s},
        {{{u"title"_s, u"New"_s}, {u"kind"_s, u" Poem "_s}},
         u"Unknown document kind 'Poem' (use prose, note, or screenplay)."_s},
        {{{u"title"_s, u"New"_s}, {u"parent"_s, u"Nowhere"_s}},
         u"No document titled 'Nowhere' exists."_s},
        {{{u"title"_s, u"Part One\nPart Two"_s}},
         u"\"title\" must be a single line: a title or name cannot hold a line break."_s},
        {{{u"title"_s, u"New"_s}, {u"body"_s, 42}}, u"\"body\" must be a string."_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.message.toStdString());
        EXPECT_EQ(fails(u"create_document"_s, c.arguments), c.message);
    }
    EXPECT_EQ(files(), before);
    EXPECT_EQ(ok(u"get_recent_changes"_s), u"No changes this session."_s);
}

TEST_F(EditingTools, UpdatesOnlyTheKeysPassedAsOneStep)
{
    const auto before = files();
    EXPECT_EQ(ok(u"update_document"_s, {{u"title"_s, u"Dust"_s},
                                        {u"parent"_s, u""_s},
                                        {u"word_count_target"_s, 0},
                                        {u"point_of_view"_s, u"Tobin"_s},
                                        {u"status"_s, u""_s},
                                        {u"synopsis"_s, u"Shelves."_s},
                                        {u"body"_s, u"Dust."_s},
                                        {u"kind"_s, u"screenplay"_s},
                                        {u"new_title"_s, u" Motes "_s}}),
              u"Updated 'Dust': renamed to 'Motes', kind set to screenplay, body "
              "replaced (5 characters), synopsis set, status cleared, point of view "
              "set to 'Tobin', word-count target cleared, moved under the top level."_s);
    const fb::core::Document *motes = document("Motes");
    ASSERT_TRUE(motes);
    EXPECT_TRUE(motes->parentId().isNull());
    EXPECT_EQ(motes->sortIndex(), 4);
    EXPECT_EQ(ok(u"undo_last"_s), u"Undid the last change."_s);
    EXPECT_EQ(files(), before);
}

TEST_F(EditingTools, RefusesABadUpdateAndChangesNothing)
{
    const auto before = files();
    const Args dust{{u"title"_s, u"Dust"_s}};
    const auto with = [&](const Args &base, const char *key, const QJsonValue &value) {
        Args arguments = base;
        arguments.insert(QString::fromUtf8(key), value);
        return arguments;
    };
    const QString badTarget
        = u"\"word_count_target\" must be a non-negative integer (0 clears the target)."_s;
    const struct
    {
        Args arguments;
        QString message;
    } cases[] = {
        {dust, u"update_document changes nothing without at least one of \"new_title\", "
               "\"body\", \"synopsis\", \"status\", \"point_of_view\", "
               "\"word_count_target\", \"kind\", or \"parent\"."_s},
        {with(dust, "new_title", u" "_s), u"\"new_title\" must not be empty."_s},
        {with(dust, "word_count_target", -5), badTarget},
        {with(dust, "word_count_target", 2.5), badTarget},
        {with(dust, "word_count_target", u"10"_s), badTarget},
        {with(dust, "synopsis", 10), u"\"synopsis\" must be a string."_s},
        // Every document keeps a title of its own, on one line.
        {with(dust, "new_title", u" the ferry "_s),
         u"A document titled 'the ferry' already exists; choose a distinct title so "
         "each document stays addressable by name."_s},
        {with(dust, "new_title", u"Dust\r\nMotes"_s),
         u"\"new_title\" must be a single line: a title or name cannot hold a line break."_s},
        {with(with(dust, "body", u"lost"_s), "kind", u"poem"_s),
         u"Unknown document kind 'poem' (use prose, note, or screenplay)."_s},
        {with({{u"title"_s, u"Arrival"_s}}, "parent", u"The Ferry"_s),
         u"'Arrival' cannot be moved under 'The Ferry' -- that would place the "
         "document inside its own subtree."_s},
        {with({{u"title"_s, u"Arrival"_s}}, "parent_id", u"6f1c0a52-0000-4000-8000-000000000001"_s),
         u"'Arrival' cannot be moved under 'Arrival' -- that would place the "
         "document inside its own subtree."_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.message.toStdString());
        EXPECT_EQ(fails(u"update_document"_s, c.arguments), c.message);
    }
    EXPECT_EQ(files(), before);
}

TEST_F(EditingTools, RenamesADocumentToADifferentSpellingOfItsOwnTitle)
{
    EXPECT_EQ(ok(u"update_document"_s, {{u"title"_s, u"Dust"_s}, {u"new_title"_s, u"DUST"_s}}),
              u"Updated 'Dust': renamed to 'DUST'."_s);
}

TEST_F(EditingTools, AppendsInTheBodysOwnFormat)
{
    EXPECT_EQ(ok(u"append_to_document"_s,
                 {{u"title"_s, u"Letter"_s},
                  {u"text"_s, u"Yours, <M>\n& always\n\n\nP.S. Burn this."_s}}),
              u"Appended 7 word(s) to 'Letter'."_s);
    EXPECT_TRUE(document("Letter")->body().endsWith(
        u"<p>Dear Tobin, the lantern &amp;lt; is lit.</p>\n<p>Yours, &lt;M&gt;<br />&amp; "
        "always</p>\n<p>P.S. Burn this.</p>\n</body></html>"_s));

    ok(u"append_to_document"_s, {{u"title"_s, u"The Archive"_s}, {u"text"_s, u"First line."_s}});
    EXPECT_EQ(document("The Archive")->body(), u"First line."_s);
    ok(u"append_to_document"_s, {{u"title"_s, u"The Archive"_s}, {u"text"_s, u"Second."_s}});
    EXPECT_EQ(document("The Archive")->body(), u"First line.\n\nSecond."_s);
    EXPECT_EQ(fails(u"append_to_document"_s, {{u"title"_s, u"Dust"_s}, {u"text"_s, u" \n "_s}}),
              u"append_to_document needs non-empty \"text\"."_s);
}

} // namespace
