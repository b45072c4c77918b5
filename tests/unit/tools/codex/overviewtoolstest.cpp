#include "core/document.h"
#include "core/entity.h"
#include "core/project.h"
#include "reviewedproject.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>

#include <iostream>

using fb::test::args;
using namespace Qt::StringLiterals;

namespace {

using OverviewTools = fb::test::ReviewedProject;
using SearchTool = fb::test::ReviewedProject;

TEST_F(OverviewTools, ShowsTheProjectAtAGlanceWithoutWhatIsWithheld)
{
    const QString missing = QDir::toNativeSeparators(sibling(u"reviewedmissing"_s));
    EXPECT_EQ(ok("get_project_overview"),
              u"## Contents\n- document: 4\n- entity: 4\n- comment: 5\n\n"
              "## Categories\n- Characters (1)\n  - Crew (1)\n- Places (1)\n\n"
              "## Calendar\n3 months, 135 days per year, era 'AL'.\n\n"
              "Audiences: Beta readers, Editor.\n\n"
              "## Mounted libraries\n"
              "- Lore Library -- ../reviewedlibrary, 3 object(s) (read-only)\n"
              "- Lost Atlas -- not available: The library folder is missing or is "
              "not a project: %1 (read/write)"_s.arg(missing));
}

TEST_F(OverviewTools, ReportsALibraryThatCannotBeReadAndKeepsServing)
{
    QDir().mkpath(sibling(u"reviewedmissing"_s));
    QFile broken(sibling(u"reviewedmissing/project.json"_s));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("{ not json");
    broken.close();
    reload();

    // The reader's own reason, not the missing-folder one.
    const QString line = ok("get_project_overview").split(u'\n').last();
    EXPECT_TRUE(line.startsWith(u"- Lost Atlas -- not available: "_s));
    EXPECT_TRUE(line.endsWith(u" (read/write)"_s));
    EXPECT_FALSE(line.contains(u"is missing"_s)) << line.toStdString();
    // The readable library is still searched.
    EXPECT_EQ(ok("search", args({{"query", "bestiary"}})),
              u"- Bestiary (document, library 'Lore Library')"_s);
}

class EmptyProject : public fb::test::ToolFixture
{
protected:
    EmptyProject()
        : ToolFixture(u"projects/minimal"_s)
    {}
};

TEST_F(EmptyProject, SaysWhatIsNotThereYet)
{
    EXPECT_EQ(ok(u"get_project_overview"_s),
              u"## Contents\nThe project is empty so far.\n\n"
              "## Categories\nNo categories yet.\n\n"
              "## Calendar\n12 months, 365 days per year, no era label.\n\n"
              "Audiences: none.\n\n"
              "## Mounted libraries\nNo mounted libraries."_s);
    EXPECT_EQ(ok(u"list_comments"_s), u"No comments yet."_s);
}

TEST_F(SearchTool, FindsTitlesAliasesAndBodiesButNothingWithheld)
{
    const struct
    {
        const char *query;
        QString answer;
    } cases[] = {
        // Titles first, then body hits; the open project before the library. The excluded draft,
        // the scene below it and the library's excluded entity mention the harbour too.
        {"  HARBOUR ", u"- Greywater Harbour (entity in Places)\n"
                       "- Harbour Master (entity in uncategorized)\n"
                       "- Harbour Wyrm (entity in Creatures, library 'Lore Library')\n"
                       "- The Ferry (document) -- Mara watched the grey water of the harbour.\n"
                       "- Notes (document) -- Harbour research: tides, ropes.\n"
                       "- Bestiary (document, library 'Lore Library') -- Wyrms nest under the "
                       "harbour wall."_s},
        {"heron", u"- Mara Vell (entity in Crew) -- alias 'The Heron'"_s},
        {"serpent", u"- Harbour Wyrm (entity in Creatures, library 'Lore Library') "
                    "-- alias 'Sea Serpent'"_s},
        // A title hit on a document still shows where its body mentions the query.
        {"ferry", u"- The Ferry (document) -- # The Ferry"_s},
        // Context stops at the line, at word boundaries, at most 60 characters either side.
        {"manifest", u"- The Ferry (document) -- ...the crates twice, because the "
                     "numbers never agreed with the manifest he had been given at "
                     "the quay."_s},
        {"lantern", u"- The Ferry (document) -- The lantern swung above the deck "
                    "while Tobin counted the crates twice,..."_s},
        // Rich text is searched as its plain text: entities decoded, styles and tags gone.
        {"water & the", u"- Night Crossing (document) -- The lighthouse beam swept "
                        "the water & the rocks."_s},
        {"color", u"No matches for 'color'."_s},
        // Only withheld objects hold these: an excluded entity's alias, an excluded library
        // entity's alias, the bodies of an excluded document and of the scene below it.
        {"nightjar", u"No matches for 'nightjar'."_s},
        {"ghost", u"No matches for 'ghost'."_s},
        {"secret", u"No matches for 'secret'."_s},
        {"hidden scene", u"No matches for 'hidden scene'."_s},
        {"%1 and %2", u"No matches for '%1 and %2'."_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.query);
        EXPECT_EQ(ok("search", args({{"query", c.query}})), c.answer);
    }
    for (const QJsonObject &empty : {args({{"query", "   "}}), args({})})
        EXPECT_EQ(fails("search", empty), u"search needs a non-empty \"query\"."_s);
}

TEST_F(SearchTool, CapsAtFiftyLinesAndCountsEveryMatch)
{
    const struct
    {
        int titles;
        int lines;
        QString last;
    } cases[] = {
        // Titles and the body of The Ferry: exactly the cap, so no note.
        {49, 50,
         u"- The Ferry (document) -- The lantern swung above the deck "
         "while Tobin counted the crates twice,..."_s},
        // More titles push the body hit past the cap, where it is still counted.
        {55, 51, u"Showing 50 of 56 matches; refine the query to see the rest."_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.titles);
        for (int i = 0; i < c.titles; ++i) {
            workspace().project().addObject(
                std::make_unique<fb::core::Document>(u"Lantern %1"_s.arg(i)));
        }
        const QStringList lines = ok("search", args({{"query", "lantern"}})).split(u'\n');
        EXPECT_EQ(lines.size(), c.lines);
        EXPECT_EQ(lines.last(), c.last);
        EXPECT_TRUE(lines.first().startsWith(u"- Lantern "_s));
        reload();
    }
}

// A novelist's project: 2,000 documents of 500 words each (a quarter of them rich text) and
// 5,000 entities, searched in one pass over the objects and their plain text.
class BigProjectSearch : public fb::test::ReviewedProject
{
protected:
    BigProjectSearch()
    {
        const QStringList words = u"the sea lorem grey harbour rope tide lantern deck "
                                  "crate wind salt gull mast oar storm bell quay"_s.split(u' ');
        quint32 seed = 12345;
        fb::core::Project &project = workspace().project();
        for (int i = 0; i < 2000; ++i) {
            QString body;
            for (int w = 0; w < 500; ++w) {
                seed = seed * 1664525u + 1013904223u;
                body += words.at(int((seed >> 16) % quint32(words.size())));
                body += w % 12 == 11 ? u'\n' : u' ';
            }
            if (i % 97 == 0)
                body += u"quillfeather"_s;
            if (i % 4 == 0)
                body = u"<!DOCTYPE html><html><body><p>"_s + body + u"</p></body></html>"_s;
            auto document = std::make_unique<fb::core::Document>(u"Scene %1"_s.arg(i));
            document->setBody(body);
            project.addObject(std::move(document));
        }
        for (int i = 0; i < 5000; ++i) {
            auto entity = std::make_unique<fb::core::Entity>(u"Entity %1"_s.arg(i));
            entity->setAliases({u"Alias %1"_s.arg(i)});
            project.addObject(std::move(entity));
        }
    }
};

TEST_F(BigProjectSearch, StaysFastOnANovelistsProject)
{
    const struct
    {
        const char *query;
        qsizetype lines;
        QString ending;
    } cases[] = {
        // Every 97th scene ends with the rare word: 21 in all.
        {"quillfeather", 21, u"quillfeather"_s},
        {"LOREM", 51, u"Showing 50 of 2000 matches; refine the query to see the rest."_s},
        {"zzz", 1, u"No matches for 'zzz'."_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.query);
        QElapsedTimer timer;
        timer.start();
        const QString answer = ok("search", args({{"query", c.query}}));
        const qint64 elapsed = timer.elapsed();
        EXPECT_EQ(answer.split(u'\n').size(), c.lines);
        EXPECT_TRUE(answer.endsWith(c.ending)) << answer.right(200).toStdString();
        std::cout << "search '" << c.query << "': " << elapsed << " ms\n";
        // Generous even for a sanitized debug build; a scan per object takes minutes.
        EXPECT_LT(elapsed, 10000);
    }
}

} // namespace
