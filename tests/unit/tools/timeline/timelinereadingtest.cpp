#include "chroniclefixture.h"
#include "core/entity.h"
#include "core/timeline.h"
#include "core/timelineevent.h"

#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

using fb::test::chronicleEras;
using fb::test::ChronicleFixture;

namespace {

const QString mainStory
    = u"# Main Story\n"
      "The events of the novel.\n"
      "- 1 Thawing, Year 1250 Third Age -- **Storm at Sea** (at The Drowned Keep)\n"
      "- 10 Highsun, Year 1250 Third Age -- **Council at the Keep** (with Pell): They argue "
      "until dawn.\n"
      "- 20 Highsun, Year 1250 Third Age -- **Harbor Fair** (at Saltmarsh Harbor)\n"
      "- 20 Highsun, Year 1250 Third Age -- **Bonfire** (with Tam Rusk): Oaths are sworn. The "
      "bell rings twice.\n"
      "- 20 Highsun, Year 1250 Third Age -- **Festival** (at Saltmarsh Harbor)\n"
      "- 25 Harvestmoon, Year 1250 Third Age, 14:30 to 25 Harvestmoon, Year 1250 Third Age, "
      "16:00 -- **The Landing** (with Mara Vell; at Saltmarsh Harbor): Mara comes ashore.\n"
      "- 3 Long Night, Year 1250 Third Age to 9 Long Night, Year 1250 Third Age -- **The "
      "Crossing** (with Pell, Jory Rusk)\n"
      "- 1 Thawing, Year 1251 Third Age -- **Dawn Bell**"_s;

const QString oldWars
    = u"# Old Wars\n"
      "- 5 Thawing, Year 1100 Third Age -- **Festival**\n"
      "- 1 Highsun, Year 1100 Third Age to 1 Thawing, Year 1101 Third Age -- **Siege of the "
      "Keep** (at The Drowned Keep)"_s;

class TimelineReading : public ChronicleFixture
{};

// Events are ordered by start, then ordinal, then title: at 20 Highsun the fair (ordinal 0)
// comes first, then the bonfire before the festival (both ordinal 1). Excluded entities are left
// out of the details, the excluded event and the events of the excluded timeline out of the
// list, and a description of two lines is folded into one.
TEST_F(TimelineReading, ListsEveryTimelineThenTheErasInStoryOrder)
{
    EXPECT_EQ(ok("get_timeline"), mainStory + u"\n\n"_s + oldWars + u"\n\n"_s + chronicleEras);
    EXPECT_EQ(ok("get_timeline", R"({"timeline": ""})"), ok("get_timeline"));
}

TEST_F(TimelineReading, ReadsOneTimelineByItsTitle)
{
    EXPECT_EQ(ok("get_timeline", R"({"timeline": "  old WARS "})"),
              oldWars + u"\n\n"_s + chronicleEras);
}

TEST_F(TimelineReading, RefusesATimelineItCannotShow)
{
    const struct
    {
        const char *name;
        const char *arguments;
        QString message;
    } cases[] = {
        {"unknown title", R"({"timeline": "Future"})", u"No timeline named 'Future' exists."_s},
        // An excluded timeline read by title is reported as absent, so its existence does not
        // leak.
        {"excluded timeline", R"({"timeline": "Hidden Chronicle"})",
         u"No timeline named 'Hidden Chronicle' exists."_s},
        {"an event's title", R"({"timeline": "Dawn Bell"})",
         u"No timeline named 'Dawn Bell' exists."_s},
        {"wrong type", R"({"timeline": 3})", u"\"timeline\" must be a string."_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(fails("get_timeline", c.arguments), c.message);
    }
}

TEST_F(TimelineReading, ListsEventsWhoseTimelineIsGoneUnderTheirOwnHeading)
{
    const QUuid oldWarsId(u"7a000000-0000-4000-8000-000000000002"_s);
    ASSERT_NE(project().takeObject(oldWarsId), nullptr);
    EXPECT_EQ(ok("get_timeline"), mainStory + u"\n\n# Events on no timeline"_s
                                      + oldWars.mid(oldWars.indexOf(u'\n')) + u"\n\n"_s
                                      + chronicleEras);
}

TEST_F(TimelineReading, SaysSoWhenThereIsNothingToList)
{
    const QUuid oldWarsId(u"7a000000-0000-4000-8000-000000000002"_s);
    for (fb::core::TimelineEvent *event : project().objectsOfType<fb::core::TimelineEvent>()) {
        if (event->timelineId() == oldWarsId)
            project().takeObject(event->id());
    }
    EXPECT_EQ(ok("get_timeline", R"({"timeline": "Old Wars"})"),
              u"# Old Wars\nNo events yet.\n\n"_s + chronicleEras);

    for (fb::core::ContentObject *object : project().objects()) {
        if (object->type() == fb::core::ObjectType::Timeline
            || object->type() == fb::core::ObjectType::TimelineEvent) {
            project().takeObject(object->id());
        }
    }
    EXPECT_EQ(ok("get_timeline"), u"No timelines yet.\n\n"_s + chronicleEras);
    project().setTimelineEras({});
    EXPECT_EQ(ok("get_timeline"), u"No timelines yet."_s);
}

TEST_F(TimelineReading, PublishesItsToolsAsDescribed)
{
    const auto line = m_server->handleLine(u"{\"id\":1,\"method\":\"tools/list\"}"_s);
    const QJsonArray tools = QJsonDocument::fromJson(line.value_or(QString()).toUtf8())
                                 .object()[u"result"_s][u"tools"_s]
                                 .toArray();
    QMap<QString, QJsonObject> byName;
    for (const QJsonValue &tool : tools)
        byName.insert(tool[u"name"_s].toString(), tool.toObject());
    const struct
    {
        QString name;
        QString description;
        QJsonArray required;
    } cases[] = {
        {u"get_timeline"_s,
         u"Reads the project's timeline(s): every event with its date(s) in the project "
         "calendar, participants and location by name, plus the named eras. Pass \"timeline\" "
         "to read one timeline; omit it for all."_s,
         {}},
        {u"create_timeline_event"_s,
         u"Creates a timeline event dated in the project calendar. Participants and the location "
         "are entity names (or aliases); unknown names fail rather than being dropped. "
         "\"timeline\" picks (or creates) a named timeline; omitted, the project's first "
         "timeline is used."_s,
         {u"title"_s, u"when"_s}},
        {u"update_timeline_event"_s,
         u"Updates an existing timeline event, addressed by its title. Sparse: only the keys you "
         "provide change (new_title, when, until, description, participants, location); an "
         "empty \"until\"/\"location\"/\"description\" clears that field."_s,
         {u"event"_s}},
        {u"manage_eras"_s,
         u"Adds, removes, or renames a named era (the labelled background bands of story time). "
         "\"add\" needs \"start\" and \"end\" dates in the project calendar; \"rename\" needs "
         "\"new_name\"."_s,
         {u"name"_s}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name.toStdString());
        const QJsonObject tool = byName.value(c.name);
        EXPECT_EQ(tool[u"description"_s].toString(), c.description);
        const QJsonObject schema = tool[u"inputSchema"_s].toObject();
        EXPECT_EQ(schema.contains(u"required"_s), !c.required.isEmpty());
        EXPECT_EQ(schema[u"required"_s].toArray(), c.required);
    }
    EXPECT_EQ(byName
                  .value(u"manage_eras"_s)[u"inputSchema"_s][u"properties"_s][u"action"_s][u"enum"_s]
                  .toArray(),
              (QJsonArray{u"add"_s, u"remove"_s, u"rename"_s}));
    EXPECT_EQ(byName.value(u"create_timeline_event"_s)[u"inputSchema"_s][u"properties"_s]
                                                      [u"participants"_s][u"items"_s][u"type"_s],
              u"string"_s);
}

// A long timeline is listed whole and in order, each event with the names of its participants.
TEST_F(TimelineReading, ListsTwoThousandEventsInOrder)
{
    const QUuid mainStoryId(u"7a000000-0000-4000-8000-000000000001"_s);
    const QUuid pell(u"e4a00000-0000-4000-8000-000000000002"_s);
    const QUuid ossian(u"e4a00000-0000-4000-8000-000000000005"_s);
    for (const fb::core::TimelineEvent *event : project().objectsOfType<fb::core::TimelineEvent>())
        project().takeObject(event->id());
    // Added in reverse, so the listing has to sort them.
    for (int i = 2000; i >= 1; --i) {
        auto event = std::make_unique<fb::core::TimelineEvent>(u"Event %1"_s.arg(i));
        event->setTimelineId(mainStoryId);
        event->setStartMinute(qint64(i) * 1440);
        event->setParticipants({pell, ossian});
        project().addObject(std::move(event));
    }
    const QStringList lines = timelineLines(u"Main Story"_s);
    ASSERT_EQ(lines.size(), 2 + 2000 + 4);
    EXPECT_EQ(lines.at(2), u"- 2 Thawing, Year 1 Third Age -- **Event 1** (with Pell)"_s);
    EXPECT_EQ(lines.at(2001), u"- 16 Highsun, Year 18 Third Age -- **Event 2000** (with Pell)"_s);
}

} // namespace
