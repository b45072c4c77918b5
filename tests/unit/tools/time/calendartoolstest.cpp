#include "core/calendar.h"
#include "core/project.h"
#include "support/toolfixture.h"

#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

using fb::test::ToolFixture;

namespace {

using Args = QJsonObject;

const QString getCalendar = u"get_calendar"_s;
const QString updateCalendar = u"update_calendar"_s;

const QString defaultCalendarText
    = u"Months (365 days per year):\n"
      "1. January -- 31 days\n"
      "2. February -- 28 days\n"
      "3. March -- 31 days\n"
      "4. April -- 30 days\n"
      "5. May -- 31 days\n"
      "6. June -- 30 days\n"
      "7. July -- 31 days\n"
      "8. August -- 31 days\n"
      "9. September -- 30 days\n"
      "10. October -- 31 days\n"
      "11. November -- 30 days\n"
      "12. December -- 31 days\n"
      "Weekdays: Monday, Tuesday, Wednesday, Thursday, Friday, Saturday, Sunday\n"
      "Era label: (none)"_s;

QJsonObject month(const char *name, const QJsonValue &days)
{
    return {{u"name"_s, QString::fromUtf8(name)}, {u"days"_s, days}};
}

class CalendarTools : public ToolFixture
{
protected:
    // The published descriptor of a tool, as "tools/list" gives it.
    QJsonObject descriptor(const QString &name)
    {
        const auto line = m_server->handleLine(
            QStringLiteral(R"({"jsonrpc":"2.0","id":1,"method":"tools/list"})"));
        const QJsonArray tools = QJsonDocument::fromJson(line.value_or(QString()).toUtf8())
                                     .object()
                                     .value(u"result"_s)
                                     .toObject()
                                     .value(u"tools"_s)
                                     .toArray();
        for (const QJsonValue &tool : tools) {
            if (tool.toObject().value(u"name"_s).toString() == name)
                return tool.toObject();
        }
        return {};
    }
};

TEST_F(CalendarTools, ListsTheDefaultCalendar)
{
    EXPECT_EQ(ok(getCalendar), defaultCalendarText);
}

TEST_F(CalendarTools, PublishesItsArguments)
{
    const QJsonObject update = descriptor(updateCalendar);
    EXPECT_EQ(update.value(u"description"_s).toString(),
              u"Updates the project calendar. Sparse: only the provided keys change. "
              "Note that story time is stored as absolute instants, so changing "
              "month lengths re-reads every existing date under the new calendar."_s);
    const QJsonObject schema = update.value(u"inputSchema"_s).toObject();
    EXPECT_FALSE(schema.contains(u"required"_s));
    const QJsonObject properties = schema.value(u"properties"_s).toObject();
    const QJsonObject months = properties.value(u"months"_s).toObject();
    EXPECT_EQ(months.value(u"description"_s).toString(),
              u"The full replacement month list: objects with \"name\" and \"days\"."_s);
    const QJsonObject item = months.value(u"items"_s).toObject();
    EXPECT_EQ(item.value(u"properties"_s)[u"days"_s][u"type"_s], u"integer"_s);
    EXPECT_EQ(properties.value(u"weekdays"_s)[u"items"_s][u"type"_s], u"string"_s);
    EXPECT_EQ(properties.value(u"era_name"_s)[u"description"_s],
              u"The era label appended to years (e.g. \"Third Age\")."_s);
    EXPECT_EQ(descriptor(getCalendar).value(u"description"_s).toString(),
              u"Reads the project's calendar: its months (with lengths), weekday "
              "names, and era label -- the reckoning every timeline date is written in."_s);
}

TEST_F(CalendarTools, RefusesABadUpdateAndChangesNothing)
{
    const auto before = files();
    const QString noMonths = u"\"months\" must list at least one month -- a calendar "
                             "with no months cannot express dates."_s;
    const QString badMonth = u"Each month needs a non-empty \"name\" and \"days\" of at least 1."_s;
    const QString noWeekdays = u"\"weekdays\" must list at least one weekday name."_s;
    const QString blankWeekday = u"Every weekday name must be non-empty."_s;
    const auto months = [](const QJsonValue &list) { return Args{{u"months"_s, list}}; };
    const auto weekdays = [](const QJsonValue &list) { return Args{{u"weekdays"_s, list}}; };
    const Args thawingOnly{{u"name"_s, u"Thawing"_s}};
    const struct
    {
        const char *name;
        Args arguments;
        QString message;
    } cases[] = {
        {"no calendar key",
         {{u"calendar"_s, u"x"_s}},
         u"Provide at least one of \"months\", \"weekdays\", or \"era_name\"."_s},
        {"no months", months(QJsonArray()), noMonths},
        {"months not a list", months(u"Thawing"_s),
         u"\"months\" must be an array of JSON objects."_s},
        {"blank month name", months(QJsonArray{month("Thawing", 30), month("  ", 30)}), badMonth},
        {"month of no days", months(QJsonArray{month("Thawing", 0)}), badMonth},
        {"month without days", months(QJsonArray{thawingOnly}), badMonth},
        {"fractional days", months(QJsonArray{month("Thawing", 2.5)}), badMonth},
        {"days beyond 32 bits", months(QJsonArray{month("Thawing", 2147483648.0)}), badMonth},
        {"month not an object", months(QJsonArray{u"Thawing"_s}), badMonth},
        {"no weekdays", weekdays(QJsonArray()), noWeekdays},
        {"blank weekday", weekdays(QJsonArray{u"Moonday"_s, u" "_s}), blankWeekday},
        {"weekday not a string", weekdays(QJsonArray{7}), blankWeekday},
        {"valid months, bad weekdays",
         {{u"months"_s, QJsonArray{month("Thawing", 30)}}, {u"weekdays"_s, QJsonArray()}},
         noWeekdays},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(fails(updateCalendar, c.arguments), c.message);
    }
    EXPECT_EQ(files(), before);
    EXPECT_EQ(ok(getCalendar), defaultCalendarText);
    EXPECT_EQ(ok(u"get_recent_changes"_s), u"No changes this session."_s);
}

TEST_F(CalendarTools, AnUpdateToTheSameCalendarChangesNothing)
{
    const auto before = files();
    const Args same{{u"weekdays"_s,
                     QJsonArray{u"Monday"_s, u" Tuesday"_s, u"Wednesday"_s, u"Thursday"_s,
                                u"Friday"_s, u"Saturday"_s, u"Sunday"_s}},
                    {u"era_name"_s, u""_s}};
    EXPECT_EQ(ok(updateCalendar, same), u"The calendar already matches; nothing changed."_s);
    EXPECT_EQ(files(), before);
    EXPECT_EQ(ok(u"get_recent_changes"_s), u"No changes this session."_s);
    EXPECT_EQ(fails(u"undo_last"_s), u"Nothing to undo."_s);
}

TEST_F(CalendarTools, ChangesOnlyTheKeysGivenAsOneUndoStep)
{
    const auto before = files();
    const QString updated = u"Updated the calendar (era label). Stored instants are unchanged and "
                            u"now read in the new "
                            "calendar."_s;
    EXPECT_EQ(ok(updateCalendar, {{u"era_name"_s, u" Third Age "_s}}), updated);
    EXPECT_EQ(ok(getCalendar), QString(defaultCalendarText)
                                   .replace(u"Era label: (none)"_s, u"Era label: Third Age"_s));
    EXPECT_NE(files(), before);
    EXPECT_EQ(ok(u"get_recent_changes"_s), updated);
    EXPECT_EQ(ok(u"undo_last"_s), u"Undid the last change."_s);
    EXPECT_EQ(files(), before);
    EXPECT_EQ(workspace().project().calendar(), fb::core::Calendar::defaultCalendar());
}

TEST_F(CalendarTools, ReplacesMonthsAndWeekdaysWhole)
{
    const auto before = files();
    EXPECT_EQ(ok(updateCalendar, {{u"months"_s, QJsonArray{month(" Thawing ", 30),
                                                           month("Harvestmoon", 2147483647)}},
                                  {u"weekdays"_s, QJsonArray{u"Moonday"_s}},
                                  {u"era_name"_s, u""_s}}),
              u"Updated the calendar (months, weekdays). Stored instants are unchanged "
              "and now read in the new calendar."_s);
    EXPECT_EQ(ok(getCalendar), u"Months (2147483677 days per year):\n"
                               "1. Thawing -- 30 days\n"
                               "2. Harvestmoon -- 2147483647 days\n"
                               "Weekdays: Moonday\n"
                               "Era label: (none)"_s);
    EXPECT_EQ(ok(u"undo_last"_s), u"Undid the last change."_s);
    EXPECT_EQ(files(), before);
}

} // namespace
