#include "support/toolfixture.h"

using fb::test::ToolFixture;

namespace {

using Args = QJsonObject;

class ReadingTools : public ToolFixture
{
};

TEST_F(ReadingTools, ListsTheVisibleTreeInReadingOrder)
{
    // "Private Journal" is excluded from AI, so its scene is hidden with it.
    EXPECT_EQ(ok(QStringLiteral("get_manuscript_tree")),
              QStringLiteral("# Manuscript (6 document(s), 40 words)\n\n"
                             "- Arrival (prose, 8 words)\n"
                             "  - The Ferry (prose, 12 words)\n"
                             "  - Harbor Lights (prose, 6 words)\n"
                             "- The Archive (prose, 0 words)\n"
                             "  - Dust (prose, 7 words)\n"
                             "- Letter (prose, 7 words)"));
}

TEST_F(ReadingTools, ShowsADocumentSheet)
{
    const struct
    {
        const char *title;
        QString sheet;
    } cases[] = {
        {"  arrival ", QStringLiteral("# Arrival\n- Kind: prose\n- Status: Draft\n- Synopsis: Mara "
                                      "reaches Saltmere.\n- Words: 8\n\n## Body\n\n# Arrival\n\nThe "
                                      "ferry came in at dusk.")},
        {"Harbor Lights",
         QStringLiteral("# Harbor Lights\n- Kind: prose\n- Words: 6\n- Footnotes: 1 (use "
                        "list_footnotes for the notes)\n\n## Body\n\nHarbor lights, lantern light, "
                        "every light.[^fn1]")},
        {"Dust", QStringLiteral("# Dust\n- Kind: prose\n- Words: 7 (target 1500)\n\n## Body\n\nDust "
                                "on every shelf of the archive.")},
        {"The Archive", QStringLiteral("# The Archive\n- Kind: prose\n- Words: 0\n\n## Body\n\n_The "
                                       "body is empty._")},
        // The escaped ampersand before "lt;" reads as the entity's text, not as "<".
        {"Letter", QStringLiteral("# Letter\n- Kind: prose\n- Words: 7\n\n## Body\n\n_This body was "
                                  "written in the rich-text editor; shown as plain text (inline "
                                  "formatting not preserved)._\n\nDear Tobin, the lantern &lt; is "
                                  "lit.")},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.title);
        EXPECT_EQ(ok(QStringLiteral("get_document"), Args{{QStringLiteral("title"), QString::fromUtf8(c.title)}}),
                  c.sheet);
    }
}

TEST_F(ReadingTools, ExplainsWhyADocumentCannotBeResolved)
{
    const struct
    {
        Args arguments;
        QString message;
    } cases[] = {
        {{}, QStringLiteral("Provide the document \"title\" (or its id).")},
        {{{QStringLiteral("title"), QStringLiteral("Nowhere")}},
         QStringLiteral("No document titled 'Nowhere' exists.")},
        {{{QStringLiteral("title"), QStringLiteral("private journal")}},
         QStringLiteral("'private journal' is excluded from AI.")},
        {{{QStringLiteral("id"), QStringLiteral("6f1c0a52-0000-4000-8000-000000000007")}},
         QStringLiteral("'Private Journal' is excluded from AI.")},
        // A scene below an excluded document is withheld with it.
        {{{QStringLiteral("title"), QStringLiteral("secret scene")}},
         QStringLiteral("'secret scene' is excluded from AI.")},
        {{{QStringLiteral("id"), QStringLiteral("6f1c0a52-0000-4000-8000-000000000008")}},
         QStringLiteral("'Secret Scene' is excluded from AI.")},
        {{{QStringLiteral("id"), QStringLiteral("not-a-uuid")}, {QStringLiteral("title"), QStringLiteral("Dust")}},
         QStringLiteral("No document with id 'not-a-uuid' exists.")},
        {{{QStringLiteral("id"), QStringLiteral("{6f1c0a52-0000-4000-8000-0000000000ff}")}},
         QStringLiteral("No document with id '{6f1c0a52-0000-4000-8000-0000000000ff}' exists.")},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.message.toStdString());
        EXPECT_EQ(fails(QStringLiteral("get_document"), c.arguments), c.message);
    }
    // An id with braces addresses the same document as without.
    EXPECT_TRUE(ok(QStringLiteral("get_document"),
                   {{QStringLiteral("id"), QStringLiteral("{6f1c0a52-0000-4000-8000-000000000005}")}})
                    .startsWith(QStringLiteral("# Dust\n")));
}

TEST_F(ReadingTools, ListsAmbiguousTitlesButNeverExcludedOnes)
{
    ok(QStringLiteral("update_document"), {{QStringLiteral("title"), QStringLiteral("Dust")},
                                           {QStringLiteral("new_title"), QStringLiteral("Private Journal")}});
    // The excluded namesake is dropped, so the title resolves to the one visible document.
    EXPECT_TRUE(ok(QStringLiteral("get_document"), {{QStringLiteral("title"), QStringLiteral("Private Journal")}})
                    .startsWith(QStringLiteral("# Private Journal\n- Kind: prose\n- Words: 7")));

    ok(QStringLiteral("update_document"), {{QStringLiteral("title"), QStringLiteral("The Ferry")},
                                           {QStringLiteral("new_title"), QStringLiteral("Private Journal")}});
    EXPECT_EQ(fails(QStringLiteral("get_document"), {{QStringLiteral("title"), QStringLiteral("PRIVATE JOURNAL")}}),
              QStringLiteral("More than one document is titled 'PRIVATE JOURNAL'; pass \"id\" to choose "
                             "one:\n- 6f1c0a52-0000-4000-8000-000000000002 (prose, 12 words)\n"
                             "- 6f1c0a52-0000-4000-8000-000000000005 (prose, 7 words)"));
}

} // namespace
