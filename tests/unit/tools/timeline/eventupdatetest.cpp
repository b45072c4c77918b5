#include "chroniclefixture.h"
#include "core/timelineevent.h"

using namespace Qt::StringLiterals;

using fb::test::ChronicleFixture;
using fb::test::json;

namespace {

const QString landing = u"- 25 Harvestmoon, Year 1250 Third Age, 14:30 to 25 Harvestmoon, Year "
                        "1250 Third Age, 16:00 -- **The Landing** (with Mara Vell; at Saltmarsh "
                        "Harbor): Mara comes ashore."_s;

class EventUpdate : public ChronicleFixture
{};

// Each update is applied to "The Landing" (25 Harvestmoon 1250, 14:30 to 16:00, with Mara Vell
// and the excluded Ossian, at Saltmarsh Harbor), read back, and undone to the very bytes.
TEST_F(EventUpdate, ChangesOnlyTheKeysGivenAndUndoesEachChange)
{
    const auto before = files();
    ASSERT_EQ(eventLine(u"Main Story"_s, u"The Landing"_s), landing);
    const struct
    {
        const char *name;
        const char *arguments;
        QString updated;
        QString title;
        QString line;
    } cases[] = {
        {"a new title", R"({"event": "  the LANDING ", "new_title": " The Homecoming "})",
         u"Updated the event 'The Homecoming' (title)."_s, u"The Homecoming"_s,
         QString(landing).replace(u"The Landing"_s, u"The Homecoming"_s)},
        {"a new start keeps the length", R"({"when": "26 Harvestmoon 1250 8:00"})",
         u"Updated the event 'The Landing' (start, end)."_s, u"The Landing"_s,
         u"- 26 Harvestmoon, Year 1250 Third Age, 08:00 to 26 Harvestmoon, Year 1250 Third Age, "
         "09:30 -- **The Landing** (with Mara Vell; at Saltmarsh Harbor): Mara comes ashore."_s},
        {"an empty end makes a moment", R"({"until": ""})",
         u"Updated the event 'The Landing' (end)."_s, u"The Landing"_s,
         u"- 25 Harvestmoon, Year 1250 Third Age, 14:30 -- **The Landing** (with Mara Vell; at "
         "Saltmarsh Harbor): Mara comes ashore."_s},
        {"a new end", R"({"until": "Long Night 1250"})",
         u"Updated the event 'The Landing' (end)."_s, u"The Landing"_s,
         u"- 25 Harvestmoon, Year 1250 Third Age, 14:30 to 1 Long Night, Year 1250 Third Age -- "
         "**The Landing** (with Mara Vell; at Saltmarsh Harbor): Mara comes ashore."_s},
        {"an empty description", R"({"description": ""})",
         u"Updated the event 'The Landing' (description)."_s, u"The Landing"_s,
         QString(landing).remove(u": Mara comes ashore."_s)},
        // Ossian, whom the agent cannot see, stays a participant.
        {"new participants", R"({"participants": ["Pell", "The Smuggler"]})",
         u"Updated the event 'The Landing' (participants)."_s, u"The Landing"_s,
         QString(landing).replace(u"with Mara Vell"_s, u"with Pell, Jory Rusk"_s)},
        {"no participants", R"({"participants": []})",
         u"Updated the event 'The Landing' (participants)."_s, u"The Landing"_s,
         QString(landing).remove(u"with Mara Vell; "_s)},
        {"an empty location", R"({"location": ""})",
         u"Updated the event 'The Landing' (location)."_s, u"The Landing"_s,
         QString(landing).remove(u"; at Saltmarsh Harbor"_s)},
        {"a new location by alias", R"({"location": "the drowned keep"})",
         u"Updated the event 'The Landing' (location)."_s, u"The Landing"_s,
         QString(landing).replace(u"Saltmarsh Harbor"_s, u"The Drowned Keep"_s)},
        {"a move with a new end", R"({"when": "1251", "until": "2 Thawing 1251 12:00"})",
         u"Updated the event 'The Landing' (start, end)."_s, u"The Landing"_s,
         u"- 1 Thawing, Year 1251 Third Age to 2 Thawing, Year 1251 Third Age, 12:00 -- **The "
         "Landing** (with Mara Vell; at Saltmarsh Harbor): Mara comes ashore."_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        QJsonObject arguments = json(c.arguments);
        ASSERT_FALSE(arguments.isEmpty());
        if (!arguments.contains(u"event"_s))
            arguments.insert(u"event"_s, u"The Landing"_s);
        EXPECT_EQ(ok(u"update_timeline_event"_s, arguments), c.updated);
        EXPECT_EQ(eventLine(u"Main Story"_s, c.title), c.line);
        EXPECT_EQ(ok("undo_last"), u"Undid the last change."_s);
        EXPECT_EQ(files(), before);
    }
}

TEST_F(EventUpdate, KeepsAWithheldLocationUnlessANewOneIsGiven)
{
    const QString council = u"- 10 Highsun, Year 1250 Third Age -- **Council at the Keep** (with "
                            "Pell): They argue until dawn."_s;
    EXPECT_EQ(ok("update_timeline_event", R"({"event": "Council at the Keep", "location": ""})"),
              u"The event 'Council at the Keep' already matches; nothing changed."_s);
    EXPECT_EQ(ok("update_timeline_event",
                 R"({"event": "Council at the Keep", "location": "The Drowned Keep"})"),
              u"Updated the event 'Council at the Keep' (location)."_s);
    EXPECT_EQ(eventLine(u"Main Story"_s, u"Council at the Keep"_s),
              QString(council).replace(u"(with Pell)"_s, u"(with Pell; at The Drowned Keep)"_s));
}

TEST_F(EventUpdate, AnUpdateThatChangesNothingIsNotLogged)
{
    const auto before = files();
    for (const char *arguments :
         {R"({"event": "The Landing", "description": " Mara comes ashore. "})",
          R"({"event": "The Landing", "participants": ["The Heron"], "location": "The Harbor"})",
          R"({"event": "The Landing", "until": "25 Harvestmoon 1250 16:00"})"}) {
        SCOPED_TRACE(arguments);
        EXPECT_EQ(ok("update_timeline_event", arguments),
                  u"The event 'The Landing' already matches; nothing changed."_s);
    }
    EXPECT_EQ(files(), before);
    EXPECT_EQ(ok("get_recent_changes"), u"No changes this session."_s);
}

TEST_F(EventUpdate, RefusesAndChangesNothing)
{
    const auto before = files();
    const QString excluded = u"'%1' is excluded from AI and cannot be changed."_s;
    const struct
    {
        const char *name;
        const char *arguments;
        QString message;
    } cases[] = {
        {"no event", R"({"new_title": "Dusk"})",
         u"update_timeline_event needs \"event\" (the event's title)."_s},
        {"unknown event", R"({"event": "Coronation", "new_title": "Dusk"})",
         u"No timeline event titled 'Coronation' exists."_s},
        {"a prefix finds nothing", R"({"event": "The Land", "new_title": "Dusk"})",
         u"No timeline event titled 'The Land' exists."_s},
        {"a title two events share", R"({"event": " festival", "new_title": "Dusk"})",
         u"2 events are titled 'festival' (at 5 Thawing, Year 1100 Third Age; 20 Highsun, Year "
         "1250 Third Age); retitle one so the title is unique, then retry."_s},
        {"an excluded event", R"({"event": "The Secret Pact", "new_title": "Dusk"})",
         excluded.arg(u"The Secret Pact"_s)},
        {"an event of an excluded timeline", R"({"event": "Whispered Vow", "new_title": "Dusk"})",
         excluded.arg(u"Whispered Vow"_s)},
        {"nothing to change", R"({"event": "The Landing"})",
         u"Provide at least one of \"new_title\", \"when\", \"until\", \"description\", "
         "\"participants\", or \"location\"."_s},
        {"an empty new title", R"({"event": "The Landing", "new_title": "  "})",
         u"\"new_title\" must not be empty."_s},
        {"a new title of two lines", R"({"event": "The Landing", "new_title": "A\nB"})",
         u"\"new_title\" must be a single line: a title or name cannot hold a line break."_s},
        {"a month prefix two months share", R"({"event": "The Landing", "when": "H 1250"})",
         u"The date 'H 1250' was not understood; use the project calendar (e.g. \"25 "
         "Harvestmoon 1250\" or \"1250\")."_s},
        {"an end before the start", R"({"event": "The Landing", "until": "1250"})",
         u"The end date '1 Thawing, Year 1250 Third Age' is before the event's start."_s},
        {"an end before a new start", R"({"event": "The Landing", "when": "1252", "until": "1251"})",
         u"The end date '1 Thawing, Year 1251 Third Age' is before the event's start."_s},
        {"an unknown participant",
         R"({"event": "The Landing", "new_title": "Dusk", "participants": ["Pell", "Nobody"]})",
         u"\"participants\" names 'Nobody', but no entity has that name or alias."_s},
        {"an excluded location", R"({"event": "The Landing", "location": "Hollow Vault"})",
         u"'Hollow Vault' is excluded from AI."_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_FALSE(json(c.arguments).isEmpty());
        EXPECT_EQ(fails("update_timeline_event", c.arguments), c.message);
    }
    EXPECT_EQ(files(), before);
    EXPECT_EQ(ok("get_recent_changes"), u"No changes this session."_s);
}

} // namespace
