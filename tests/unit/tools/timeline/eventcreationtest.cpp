#include "chroniclefixture.h"
#include "core/timeline.h"
#include "core/timelineevent.h"

using namespace Qt::StringLiterals;

using fb::test::ChronicleFixture;
using fb::test::json;

namespace {

class EventCreation : public ChronicleFixture
{
protected:
    const fb::core::TimelineEvent *event(const QString &title)
    {
        for (const fb::core::TimelineEvent *event :
             project().objectsOfType<fb::core::TimelineEvent>()) {
            if (event->title() == title)
                return event;
        }
        return nullptr;
    }
};

// Each event goes on a timeline of its own and is read back as the listing shows it.
TEST_F(EventCreation, ListsEachNewEventOnOneLine)
{
    const struct
    {
        const char *name;
        const char *arguments;
        QString created;
        QString line;
    } cases[] = {
        {"a moment, nothing else", R"({"title": "Bare", "when": "25 Harvestmoon 1250"})",
         u"Created the event 'Bare' at 25 Harvestmoon, Year 1250 Third Age."_s,
         u"- 25 Harvestmoon, Year 1250 Third Age -- **Bare**"_s},
        {"an end and times",
         R"({"title": "Long Watch", "when": "Harvestmoon 25, 1250 9:05",
             "until": "2 Long Night 1250 18:00"})",
         u"Created the event 'Long Watch' at 25 Harvestmoon, Year 1250 Third Age, 09:05."_s,
         u"- 25 Harvestmoon, Year 1250 Third Age, 09:05 to 2 Long Night, Year 1250 Third Age, "
         "18:00 -- **Long Watch**"_s},
        {"an end equal to the start is a moment",
         R"({"title": "Blink", "when": "3 Thawing 1250", "until": "3 thawing 1250"})",
         u"Created the event 'Blink' at 3 Thawing, Year 1250 Third Age."_s,
         u"- 3 Thawing, Year 1250 Third Age -- **Blink**"_s},
        {"a blank end is no end",
         R"({"title": "Blank End", "when": "3 Thawing 1250", "until": "  "})",
         u"Created the event 'Blank End' at 3 Thawing, Year 1250 Third Age."_s,
         u"- 3 Thawing, Year 1250 Third Age -- **Blank End**"_s},
        {"participants by alias and by title, in any case",
         R"({"title": "Reunion", "when": "1250", "participants": ["the heron", " Pell "]})",
         u"Created the event 'Reunion' at 1 Thawing, Year 1250 Third Age."_s,
         u"- 1 Thawing, Year 1250 Third Age -- **Reunion** (with Mara Vell, Pell)"_s},
        {"one entity named twice is listed once",
         R"({"title": "Mirror", "when": "1250", "participants": ["Mara Vell", "The Heron"]})",
         u"Created the event 'Mirror' at 1 Thawing, Year 1250 Third Age."_s,
         u"- 1 Thawing, Year 1250 Third Age -- **Mirror** (with Mara Vell)"_s},
        {"an ambiguous alias settled by an id",
         R"({"title": "Twins", "when": "1250",
             "participants": ["{e4a00000-0000-4000-8000-000000000004}", "The Smuggler"]})",
         u"Created the event 'Twins' at 1 Thawing, Year 1250 Third Age."_s,
         u"- 1 Thawing, Year 1250 Third Age -- **Twins** (with Tam Rusk, Jory Rusk)"_s},
        {"a location only", R"({"title": "Tide", "when": "1250", "location": "the harbor"})",
         u"Created the event 'Tide' at 1 Thawing, Year 1250 Third Age."_s,
         u"- 1 Thawing, Year 1250 Third Age -- **Tide** (at Saltmarsh Harbor)"_s},
        {"everything",
         R"({"title": "Smoke", "when": "7 harv 1251 6:00", "until": "Long Night 1251",
             "participants": ["Jory Rusk"], "location": "The Drowned Keep",
             "description": "  Smoke on the water.  "})",
         u"Created the event 'Smoke' at 7 Harvestmoon, Year 1251 Third Age, 06:00."_s,
         u"- 7 Harvestmoon, Year 1251 Third Age, 06:00 to 1 Long Night, Year 1251 Third Age -- "
         "**Smoke** (with Jory Rusk; at The Drowned Keep): Smoke on the water."_s},
        {"a description alone", R"({"title": "Quiet", "when": "1 Highsun Year 1250 Third Age",
             "description": "Nothing happens."})",
         u"Created the event 'Quiet' at 1 Highsun, Year 1250 Third Age."_s,
         u"- 1 Highsun, Year 1250 Third Age -- **Quiet**: Nothing happens."_s},
        {"a year before the first", R"({"title": "Before", "when": "-3"})",
         u"Created the event 'Before' at 1 Thawing, Year -3 Third Age."_s,
         u"- 1 Thawing, Year -3 Third Age -- **Before**"_s},
    };
    int number = 0;
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const QString timeline = u"Scratch %1"_s.arg(++number);
        QJsonObject arguments = json(c.arguments);
        ASSERT_FALSE(arguments.isEmpty());
        arguments.insert(u"timeline"_s, timeline);
        EXPECT_EQ(ok(u"create_timeline_event"_s, arguments), c.created);
        const QStringList lines = timelineLines(timeline);
        ASSERT_GE(lines.size(), 2);
        EXPECT_EQ(lines.at(0), u"# "_s + timeline);
        EXPECT_EQ(lines.at(1), c.line);
    }
}

// A date the calendar formats reads back as the same instant, so what the agent reads it can
// write again unchanged.
TEST_F(EventCreation, ReadsADateBackAsItWasWritten)
{
    EXPECT_EQ(ok("create_timeline_event", R"({"title": "Last Light", "when": "30 Highsun 1250 23:59",
                                             "timeline": "Main Story"})"),
              u"Created the event 'Last Light' at 30 Highsun, Year 1250 Third Age, 23:59."_s);
    ASSERT_NE(event(u"Last Light"_s), nullptr);
    // (1249 years of 115 days + 30 days of Thawing + 29 days) in minutes, and 23:59.
    EXPECT_EQ(event(u"Last Light"_s)->startMinute(), 206920799);
    const QString line = eventLine(u"Main Story"_s, u"Last Light"_s);
    EXPECT_EQ(line, u"- 30 Highsun, Year 1250 Third Age, 23:59 -- **Last Light**"_s);
    EXPECT_EQ(ok(u"update_timeline_event"_s,
                 {{u"event"_s, u"Last Light"_s},
                  {u"when"_s, u"30 Highsun, Year 1250 Third Age, 23:59"_s}}),
              u"The event 'Last Light' already matches; nothing changed."_s);
}

TEST_F(EventCreation, RefusesAndChangesNothing)
{
    const auto before = files();
    const qsizetype objects = project().objectCount();
    const QString dateRefusal = u"The date '%1' was not understood; use the project calendar "
                                "(e.g. \"25 Harvestmoon 1250\" or \"1250\")."_s;
    const struct
    {
        const char *name;
        const char *arguments;
        QString message;
    } cases[] = {
        {"no title", R"({"when": "1250"})",
         u"create_timeline_event needs \"title\" and \"when\"."_s},
        {"blank when", R"({"title": "Dusk", "when": "  "})",
         u"create_timeline_event needs \"title\" and \"when\"."_s},
        {"title of two lines", R"({"title": "Dusk\nDawn", "when": "1250"})",
         u"\"title\" must be a single line: a title or name cannot hold a line break."_s},
        {"timeline of two lines", R"({"title": "Dusk", "when": "1250", "timeline": "A\nB"})",
         u"\"timeline\" must be a single line: a title or name cannot hold a line break."_s},
        {"day beyond the month", R"({"title": "Dusk", "when": "13 Long Night 1250"})",
         dateRefusal.arg(u"13 Long Night 1250"_s)},
        {"end not a date", R"({"title": "Dusk", "when": "1250", "until": " soon"})",
         dateRefusal.arg(u" soon"_s)},
        {"end before start", R"({"title": "Dusk", "when": "2 Thawing 1250", "until": "1250"})",
         u"The end date '1 Thawing, Year 1250 Third Age' is before the start '2 Thawing, Year "
         "1250 Third Age'."_s},
        {"one unknown participant",
         R"({"title": "Dusk", "when": "1250", "participants": ["Mara Vell", "Zed"]})",
         u"\"participants\" names 'Zed', but no entity has that name or alias."_s},
        {"a blank participant",
         R"({"title": "Dusk", "when": "1250", "participants": ["Mara Vell", " "]})",
         u"Every name in \"participants\" must be non-empty."_s},
        // The codex lookup's own answer, whose advice the agent follows by listing the id.
        {"an ambiguous participant",
         R"({"title": "Dusk", "when": "1250", "participants": ["rusk"]})",
         u"The name 'rusk' matches 2 entitys:\n"
         "- Jory Rusk (entity in Characters, id e4a00000-0000-4000-8000-000000000003)\n"
         "- Tam Rusk (entity in Characters, id e4a00000-0000-4000-8000-000000000004)\n"
         "Pass \"id\" with the one you mean."_s},
        {"an excluded participant",
         R"({"title": "Dusk", "when": "1250", "participants": ["Pell", "The Hidden King"]})",
         u"'The Hidden King' is excluded from AI."_s},
        {"an unknown participant id",
         R"({"title": "Dusk", "when": "1250", "participants": ["e4a00000-0000-4000-8000-000000000099"]})",
         u"No entity with id 'e4a00000-0000-4000-8000-000000000099' exists."_s},
        {"a timeline's id as a participant",
         R"({"title": "Dusk", "when": "1250", "participants": ["7a000000-0000-4000-8000-000000000001"]})",
         u"The id '7a000000-0000-4000-8000-000000000001' is not an entity."_s},
        {"participants not a list", R"({"title": "Dusk", "when": "1250", "participants": "Pell"})",
         u"\"participants\" must be an array of strings."_s},
        {"an unknown location", R"({"title": "Dusk", "when": "1250", "location": "Atlantis"})",
         u"\"location\" names 'Atlantis', but no entity has that name or alias."_s},
        {"a timeline as the location",
         R"({"title": "Dusk", "when": "1250", "location": "Main Story"})",
         u"\"location\" names 'Main Story', but no entity has that name or alias."_s},
        {"an excluded location", R"({"title": "Dusk", "when": "1250", "location": "hollow vault"})",
         u"'hollow vault' is excluded from AI."_s},
        {"an excluded timeline",
         R"({"title": "Dusk", "when": "1250", "timeline": "Hidden Chronicle"})",
         u"'Hidden Chronicle' is excluded from AI and cannot be changed."_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_FALSE(json(c.arguments).isEmpty());
        EXPECT_EQ(fails("create_timeline_event", c.arguments), c.message);
    }
    EXPECT_EQ(project().objectCount(), objects);
    EXPECT_EQ(files(), before);
    EXPECT_EQ(ok("get_recent_changes"), u"No changes this session."_s);
}

TEST_F(EventCreation, PutsAnEventWithoutATimelineLastAtItsInstantOnTheFirstTimeline)
{
    const auto before = files();
    EXPECT_EQ(ok("create_timeline_event", R"({"title": "Auction", "when": "20 Highsun 1250"})"),
              u"Created the event 'Auction' at 20 Highsun, Year 1250 Third Age."_s);
    const QStringList lines = timelineLines(u"Main Story"_s);
    const qsizetype festival = lines.indexOf(
        u"- 20 Highsun, Year 1250 Third Age -- **Festival** (at Saltmarsh Harbor)"_s);
    ASSERT_GE(festival, 0);
    EXPECT_EQ(lines.value(festival + 1), u"- 20 Highsun, Year 1250 Third Age -- **Auction**"_s);
    EXPECT_EQ(event(u"Auction"_s)->ordinal(), 2);
    EXPECT_EQ(ok("undo_last"), u"Undid the last change."_s);
    EXPECT_EQ(files(), before);
}

TEST_F(EventCreation, CreatesANamedTimelineAfterTheOthersAndUndoesBoth)
{
    const auto before = files();
    EXPECT_EQ(ok("create_timeline_event",
                 R"({"title": "Landfall", "when": "1300", "timeline": "Sea Voyages"})"),
              u"Created the event 'Landfall' at 1 Thawing, Year 1300 Third Age."_s);
    const auto *voyages = project().objectAs<fb::core::Timeline>(event(u"Landfall"_s)->timelineId());
    ASSERT_NE(voyages, nullptr);
    EXPECT_EQ(voyages->title(), u"Sea Voyages"_s);
    EXPECT_EQ(voyages->sortIndex(), 3);
    EXPECT_TRUE(
        ok("get_timeline")
            .contains(
                u"\n\n# Sea Voyages\n- 1 Thawing, Year 1300 Third Age -- **Landfall**\n\n## Eras"_s));
    // The same title in another case names the same timeline.
    ok("create_timeline_event", R"({"title": "Return", "when": "1301", "timeline": "sea voyages"})");
    EXPECT_EQ(event(u"Return"_s)->timelineId(), voyages->id());
    EXPECT_EQ(ok("get_recent_changes"),
              u"Created the event 'Landfall' at 1 Thawing, Year 1300 Third Age.\n"
              "Created the event 'Return' at 1 Thawing, Year 1301 Third Age."_s);

    ok("undo_last");
    ok("undo_last");
    EXPECT_EQ(files(), before);
    EXPECT_EQ(fails("get_timeline", R"({"timeline": "Sea Voyages"})"),
              u"No timeline named 'Sea Voyages' exists."_s);
}

class FirstEvent : public fb::test::ToolFixture
{};

// A project without a timeline gets one for its first event.
TEST_F(FirstEvent, MakesTheFirstTimeline)
{
    EXPECT_EQ(ok(u"get_timeline"_s), u"No timelines yet."_s);
    EXPECT_EQ(ok(u"create_timeline_event"_s,
                 {{u"title"_s, u"First Light"_s}, {u"when"_s, u"3 March 1890 7:15"_s}}),
              u"Created the event 'First Light' at 3 March, Year 1890, 07:15."_s);
    EXPECT_EQ(ok(u"get_timeline"_s),
              u"# Timeline\n- 3 March, Year 1890, 07:15 -- **First Light**"_s);
}

} // namespace
