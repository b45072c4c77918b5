#include "core/calendar.h"
#include "core/commands/command.h"
#include "core/commands/projectcommands.h"
#include "core/project.h"
#include "storage/workspace.h"
#include "tools/common/change.h"
#include "tools/common/toolcontext.h"
#include "tools/registration.h"

#include <QJsonArray>
#include <QJsonValue>
#include <QStringList>

#include <limits>
#include <optional>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

const QString monthsKey = u"months"_s;
const QString weekdaysKey = u"weekdays"_s;
// A malformed month or weekday, whatever is wrong with it, is refused in the calendar's own words.
const QString badMonthMessage
    = u"Each month needs a non-empty \"name\" and \"days\" of at least 1."_s;
const QString blankWeekdayMessage = u"Every weekday name must be non-empty."_s;
const QString eraNameKey = u"era_name"_s;

McpToolResult getCalendar(ToolContext &context, const ToolArguments &)
{
    const core::Calendar &calendar = context.workspace().project().calendar();
    QStringList lines{u"Months (%1 days per year):"_s.arg(calendar.daysPerYear())};
    for (qsizetype index = 0; index < calendar.months.size(); ++index) {
        const core::CalendarMonth &month = calendar.months.at(index);
        lines.append(u"%1. %2 -- %3 days"_s.arg(QString::number(index + 1), month.name,
                                                QString::number(month.days)));
    }
    const auto orNone = [](const QString &text) { return text.isEmpty() ? u"(none)"_s : text; };
    lines.append(u"Weekdays: %1"_s.arg(orNone(calendar.weekdays.join(u", "_s))));
    lines.append(u"Era label: %1"_s.arg(orNone(calendar.eraName)));
    return McpToolResult::success(lines.join(u'\n'));
}

Result<QList<core::CalendarMonth>> readMonths(const ToolArguments &arguments)
{
    const QList<QJsonObject> items = arguments.records(monthsKey);
    if (items.isEmpty()) {
        return makeError(u"\"months\" must list at least one month -- a calendar "
                         "with no months cannot express dates."_s);
    }
    QList<core::CalendarMonth> months;
    for (const QJsonObject &item : items) {
        // The kit checked each member's type: a name is a string and days a whole number.
        const QString name = item.value(u"name"_s).toString().trimmed();
        const QJsonValue days = item.value(u"days"_s);
        // Lengths are stored as 32-bit counts; a longer month is refused rather than cut short.
        if (name.isEmpty() || !days.isDouble() || days.toInteger() < 1
            || days.toInteger() > std::numeric_limits<qint32>::max()) {
            return makeError(badMonthMessage);
        }
        months.append({name, qint32(days.toInteger())});
    }
    return months;
}

Result<QStringList> readWeekdays(const ToolArguments &arguments)
{
    const QStringList items = arguments.textList(weekdaysKey);
    if (items.isEmpty())
        return makeError(u"\"weekdays\" must list at least one weekday name."_s);
    QStringList weekdays;
    for (const QString &item : items) {
        const QString name = item.trimmed();
        if (name.isEmpty())
            return makeError(blankWeekdayMessage);
        weekdays.append(name);
    }
    return weekdays;
}

McpToolResult updateCalendar(ToolContext &context, const ToolArguments &arguments)
{
    core::Project &project = context.workspace().project();
    const bool hasMonths = arguments.has(monthsKey);
    const bool hasWeekdays = arguments.has(weekdaysKey);
    const bool hasEraName = arguments.has(eraNameKey);
    if (!hasMonths && !hasWeekdays && !hasEraName) {
        return McpToolResult::failure(
            u"Provide at least one of \"months\", \"weekdays\", or \"era_name\"."_s);
    }

    const core::Calendar &current = project.calendar();
    core::Calendar next = current;
    if (hasMonths) {
        Result<QList<core::CalendarMonth>> months = readMonths(arguments);
        if (!months)
            return McpToolResult::failure(months.error());
        next.months = std::move(months).value();
    }
    if (hasWeekdays) {
        Result<QStringList> weekdays = readWeekdays(arguments);
        if (!weekdays)
            return McpToolResult::failure(weekdays.error());
        next.weekdays = std::move(weekdays).value();
    }
    if (hasEraName)
        next.eraName = arguments.trimmed(eraNameKey);

    QStringList changed;
    if (next.months != current.months)
        changed.append(u"months"_s);
    if (next.weekdays != current.weekdays)
        changed.append(u"weekdays"_s);
    if (next.eraName != current.eraName)
        changed.append(u"era label"_s);
    if (changed.isEmpty())
        return McpToolResult::success(u"The calendar already matches; nothing changed."_s);

    const QString text = u"Updated the calendar (%1). Stored instants are unchanged "
                         "and now read in the new calendar."_s.arg(changed.join(u", "_s));
    auto change = std::make_unique<core::CompositeCommand>(u"MCP: update calendar"_s);
    change->append(std::make_unique<core::SetCalendarCommand>(project, std::move(next)));
    return applyChange(context, std::move(change), text);
}

} // namespace

// The story calendar.
std::vector<ToolDefinition> calendarTools()
{
    return {
        {u"get_calendar"_s,
         u"Reads the project's calendar: its months (with lengths), weekday names, and "
         "era label -- the reckoning every timeline date is written in."_s,
         {},
         getCalendar},
        {u"update_calendar"_s,
         u"Updates the project calendar. Sparse: only the provided keys change. Note "
         "that story time is stored as absolute instants, so changing month lengths "
         "re-reads every existing date under the new calendar."_s,
         {withElementRefusal(
              optionalRecordList(monthsKey,
                                 u"The full replacement month list: objects with \"name\" "
                                 "and \"days\"."_s,
                                 {requiredText(u"name"_s, u"The month's name."_s),
                                  requiredInteger(u"days"_s,
                                                  u"How many days the month has (at least 1)."_s)}),
              badMonthMessage),
          withElementRefusal(optionalTextList(weekdaysKey, u"The full replacement weekday cycle."_s),
                             blankWeekdayMessage),
          optionalText(eraNameKey, u"The era label appended to years (e.g. \"Third Age\")."_s)},
         updateCalendar},
    };
}

} // namespace fb::app
