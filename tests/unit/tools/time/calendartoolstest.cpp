#include "support/toolfixture.h"

#include "core/calendar.h"
#include "core/project.h"

#include <QJsonArray>
#include <QJsonDocument>

using fb::test::ToolFixture;

namespace {

using Args = QJsonObject;

const QString getCalendar = QStringLiteral("get_calendar");
const QString updateCalendar = QStringLiteral("update_calendar");

const QString defaultCalendarText =
    QStringLiteral("Months (365 days per year):\n"
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
                   "Era label: (none)");

QJsonObject month(const char *name, const QJsonValue &days)
{
    return {{QStringLiteral("name"), QString::fromUtf8(name)}, {QStringLiteral("days"), days}};
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
                                     .value(QStringLiteral("result"))
                                     .toObject()
                                     .value(QStringLiteral("tools"))
                                     .toArray();
        for (const QJsonValue &tool : tools) {
            if (tool.toObject().value(QStringLiteral("name")).toString() == name)
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
    EXPECT_EQ(update.value(QStringLiteral("description")).toString(),
              QStringLiteral("Updates the project calendar. Sparse: only the provided keys change. "
                             "Note that story time is stored as absolute instants, so changing "
                             "month lengths re-reads every existing date under the new calendar."));
    const QJsonObject schema = update.value(QStringLiteral("inputSchema")).toObject();
    EXPECT_FALSE(schema.contains(QStringLiteral("required")));
    const QJsonObject properties = schema.value(QStringLiteral("properties")).toObject();
    const QJsonObject months = properties.value(QStringLiteral("months")).toObject();
    EXPECT_EQ(
        months.value(QStringLiteral("description")).toString(),
        QStringLiteral("The full replacement month list: objects with \"name\" and \"days\"."));
    const QJsonObject item = months.value(QStringLiteral("items")).toObject();
    EXPECT_EQ(
        item.value(QStringLiteral("properties"))[QStringLiteral("days")][QStringLiteral("type")],
        QStringLiteral("integer"));
    EXPECT_EQ(properties.value(
                  QStringLiteral("weekdays"))[QStringLiteral("items")][QStringLiteral("type")],
              QStringLiteral("string"));
    EXPECT_EQ(properties.value(QStringLiteral("era_name"))[QStringLiteral("description")],
              QStringLiteral("The era label appended to years (e.g. \"Third Age\")."));
    EXPECT_EQ(
        descriptor(getCalendar).value(QStringLiteral("description")).toString(),
        QStringLiteral("Reads the project's calendar: its months (with lengths), weekday "
                       "names, and era label -- the reckoning every timeline date is written in."));
}

TEST_F(CalendarTools, RefusesABadUpdateAndChangesNothing)
{
    const auto before = files();
    const QString noMonths = QStringLiteral("\"months\" must list at least one month -- a calendar "
                                            "with no months cannot express dates.");
    const QString badMonth =
        QStringLiteral("Each month needs a non-empty \"name\" and \"days\" of at least 1.");
    const QString noWeekdays = QStringLiteral("\"weekdays\" must list at least one weekday name.");
    const QString blankWeekday = QStringLiteral("Every weekday name must be non-empty.");
    const auto months = [](const QJsonValue &list) {
        return Args{{QStringLiteral("months"), list}};
    };
    const auto weekdays = [](const QJsonValue &list) {
        return Args{{QStringLiteral("weekdays"), list}};
    };
    const Args thawingOnly{{QStringLiteral("name"), QStringLiteral("Thawing")}};
    const struct
    {
        const char *name;
        Args arguments;
        QString message;
    } cases[] = {
        {"no calendar key",
         {{QStringLiteral("calendar"), QStringLiteral("x")}},
         QStringLiteral("Provide at least one of \"months\", \"weekdays\", or \"era_name\".")},
        {"no months", months(QJsonArray()), noMonths},
        {"months not a list", months(QStringLiteral("Thawing")), noMonths},
        {"blank month name", months(QJsonArray{month("Thawing", 30), month("  ", 30)}), badMonth},
        {"month of no days", months(QJsonArray{month("Thawing", 0)}), badMonth},
        {"month without days", months(QJsonArray{thawingOnly}), badMonth},
        {"fractional days", months(QJsonArray{month("Thawing", 2.5)}), badMonth},
        {"days beyond 32 bits", months(QJsonArray{month("Thawing", 2147483648.0)}), badMonth},
        {"month not an object", months(QJsonArray{QStringLiteral("Thawing")}), badMonth},
        {"no weekdays", weekdays(QJsonArray()), noWeekdays},
        {"blank weekday", weekdays(QJsonArray{QStringLiteral("Moonday"), QStringLiteral(" ")}),
         blankWeekday},
        {"weekday not a string", weekdays(QJsonArray{7}), blankWeekday},
        {"valid months, bad weekdays",
         {{QStringLiteral("months"), QJsonArray{month("Thawing", 30)}},
          {QStringLiteral("weekdays"), QJsonArray()}},
         noWeekdays},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(fails(updateCalendar, c.arguments), c.message);
    }
    EXPECT_EQ(files(), before);
    EXPECT_EQ(ok(getCalendar), defaultCalendarText);
    EXPECT_EQ(ok(QStringLiteral("get_recent_changes")), QStringLiteral("No changes this session."));
}

TEST_F(CalendarTools, AnUpdateToTheSameCalendarChangesNothing)
{
    const auto before = files();
    const Args same{{QStringLiteral("weekdays"),
                     QJsonArray{QStringLiteral("Monday"), QStringLiteral(" Tuesday"),
                                QStringLiteral("Wednesday"), QStringLiteral("Thursday"),
                                QStringLiteral("Friday"), QStringLiteral("Saturday"),
                                QStringLiteral("Sunday")}},
                    {QStringLiteral("era_name"), QStringLiteral("")}};
    EXPECT_EQ(ok(updateCalendar, same),
              QStringLiteral("The calendar already matches; nothing changed."));
    EXPECT_EQ(files(), before);
    EXPECT_EQ(ok(QStringLiteral("get_recent_changes")), QStringLiteral("No changes this session."));
    EXPECT_EQ(fails(QStringLiteral("undo_last")), QStringLiteral("Nothing to undo."));
}

TEST_F(CalendarTools, ChangesOnlyTheKeysGivenAsOneUndoStep)
{
    const auto before = files();
    const QString updated = QStringLiteral(
        "Updated the calendar (era label). Stored instants are unchanged and now read in the new "
        "calendar.");
    EXPECT_EQ(ok(updateCalendar, {{QStringLiteral("era_name"), QStringLiteral(" Third Age ")}}),
              updated);
    EXPECT_EQ(ok(getCalendar), QString(defaultCalendarText)
                                   .replace(QStringLiteral("Era label: (none)"),
                                            QStringLiteral("Era label: Third Age")));
    EXPECT_NE(files(), before);
    EXPECT_EQ(ok(QStringLiteral("get_recent_changes")), updated);
    EXPECT_EQ(ok(QStringLiteral("undo_last")), QStringLiteral("Undid the last change."));
    EXPECT_EQ(files(), before);
    EXPECT_EQ(workspace().project().calendar(), fb::core::Calendar::defaultCalendar());
}

TEST_F(CalendarTools, ReplacesMonthsAndWeekdaysWhole)
{
    const auto before = files();
    EXPECT_EQ(
        ok(updateCalendar, {{QStringLiteral("months"),
                             QJsonArray{month(" Thawing ", 30), month("Harvestmoon", 2147483647)}},
                            {QStringLiteral("weekdays"), QJsonArray{QStringLiteral("Moonday")}},
                            {QStringLiteral("era_name"), QStringLiteral("")}}),
        QStringLiteral("Updated the calendar (months, weekdays). Stored instants are unchanged "
                       "and now read in the new calendar."));
    EXPECT_EQ(ok(getCalendar), QStringLiteral("Months (2147483677 days per year):\n"
                                              "1. Thawing -- 30 days\n"
                                              "2. Harvestmoon -- 2147483647 days\n"
                                              "Weekdays: Moonday\n"
                                              "Era label: (none)"));
    EXPECT_EQ(ok(QStringLiteral("undo_last")), QStringLiteral("Undid the last change."));
    EXPECT_EQ(files(), before);
}

} // namespace
