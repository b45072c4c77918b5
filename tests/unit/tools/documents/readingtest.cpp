#include "support/toolfixture.h"

#include <QFile>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

using fb::test::ToolFixture;

namespace {

using Args = QJsonObject;

class ReadingTools : public ToolFixture
{};

TEST_F(ReadingTools, ListsTheVisibleTreeInReadingOrder)
{
    // "Private Journal" is excluded from AI, so its scene is hidden with it.
    EXPECT_EQ(ok(u"get_manuscript_tree"_s), u"# Manuscript (6 document(s), 40 words)\n\n"
                                            "- Arrival (prose, 8 words)\n"
                                            "  - The Ferry (prose, 12 words)\n"
                                            "  - Harbor Lights (prose, 6 words)\n"
                                            "- The Archive (prose, 0 words)\n"
                                            "  - Dust (prose, 7 words)\n"
                                            "- Letter (prose, 7 words)"_s);
}

TEST_F(ReadingTools, ShowsADocumentSheet)
{
    const struct
    {
        const char *title;
        QString sheet;
    } cases[] = {
        {"  arrival ", u"# Arrival\n- Kind: prose\n- Status: Draft\n- Synopsis: Mara "
                       "reaches Saltmere.\n- Words: 8\n\n## Body\n\n# Arrival\n\nThe "
                       "ferry came in at dusk."_s},
        {"Harbor Lights",
         u"# Harbor Lights\n- Kind: prose\n- Words: 6\n- Footnotes: 1 (use "
         "list_footnotes for the notes)\n\n## Body\n\nHarbor lights, lantern light, "
         "every light.[^fn1]"_s},
        {"Dust", u"# Dust\n- Kind: prose\n- Words: 7 (target 1500)\n\n## Body\n\nDust "
                 "on every shelf of the archive."_s},
        {"The Archive", u"# The Archive\n- Kind: prose\n- Words: 0\n\n## Body\n\n_The "
                        "body is empty._"_s},
        // The escaped ampersand before "lt;" reads as the entity's text, not as "<".
        {"Letter", u"# Letter\n- Kind: prose\n- Words: 7\n\n## Body\n\n_This body was "
                   "written in the rich-text editor; shown as plain text (inline "
                   "formatting not preserved)._\n\nDear Tobin, the lantern &lt; is "
                   "lit."_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.title);
        EXPECT_EQ(ok(u"get_document"_s, Args{{u"title"_s, QString::fromUtf8(c.title)}}), c.sheet);
    }
}

TEST_F(ReadingTools, ExplainsWhyADocumentCannotBeResolved)
{
    const struct
    {
        Args arguments;
        QString message;
    } cases[] = {
        {{}, u"Provide the document \"title\" (or its id)."_s},
        {{{u"title"_s, u"Nowhere"_s}}, u"No document titled 'Nowhere' exists."_s},
        {{{u"title"_s, u"private journal"_s}}, u"'private journal' is excluded from AI."_s},
        {{{u"id"_s, u"6f1c0a52-0000-4000-8000-000000000007"_s}},
         u"'Private Journal' is excluded from AI."_s},
        // A scene below an excluded document is withheld with it.
        {{{u"title"_s, u"secret scene"_s}}, u"'secret scene' is excluded from AI."_s},
        {{{u"id"_s, u"6f1c0a52-0000-4000-8000-000000000008"_s}},
         u"'Secret Scene' is excluded from AI."_s},
        {{{u"id"_s, u"not-a-uuid"_s}, {u"title"_s, u"Dust"_s}},
         u"No document with id 'not-a-uuid' exists."_s},
        {{{u"id"_s, u"{6f1c0a52-0000-4000-8000-0000000000ff}"_s}},
         u"No document with id '{6f1c0a52-0000-4000-8000-0000000000ff}' exists."_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.message.toStdString());
        EXPECT_EQ(fails(u"get_document"_s, c.arguments), c.message);
    }
    // An id with braces addresses the same document as without.
    EXPECT_TRUE(ok(u"get_document"_s, {{u"id"_s, u"{6f1c0a52-0000-4000-8000-000000000005}"_s}})
                    .startsWith(u"# Dust\n"_s));
}

TEST_F(ReadingTools, ListsAmbiguousTitlesButNeverExcludedOnes)
{
    // The tools refuse to make a title ambiguous, but another program may; a title on disk is
    // changed directly and the project read again.
    const auto retitleOnDisk = [this](const char *id, const QString &title) {
        QFile file(workspace().folder() + u"/objects/6f1c0a52-0000-4000-8000-00000000000"_s
                   + QLatin1String(id) + u".json"_s);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        QJsonObject object = QJsonDocument::fromJson(file.readAll()).object();
        file.close();
        object.insert(u"title"_s, title);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(QJsonDocument(object).toJson());
        file.close();
        ASSERT_TRUE(workspace().reload());
    };

    retitleOnDisk("5", u"Private Journal"_s);
    // The excluded namesake is dropped, so the title resolves to the one visible document.
    EXPECT_TRUE(ok(u"get_document"_s, {{u"title"_s, u"Private Journal"_s}})
                    .startsWith(u"# Private Journal\n- Kind: prose\n- Words: 7"_s));

    retitleOnDisk("2", u"Private Journal"_s);
    EXPECT_EQ(fails(u"get_document"_s, {{u"title"_s, u"PRIVATE JOURNAL"_s}}),
              u"More than one document is titled 'PRIVATE JOURNAL'; pass \"id\" to choose "
              "one:\n- 6f1c0a52-0000-4000-8000-000000000002 (prose, 12 words)\n"
              "- 6f1c0a52-0000-4000-8000-000000000005 (prose, 7 words)"_s);
}

} // namespace
