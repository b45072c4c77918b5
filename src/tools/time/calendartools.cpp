#include "tools/registration.h"

#include "core/calendar.h"
#include "core/commands/command.h"
#include "core/commands/projectcommands.h"
#include "core/project.h"
#include "server/mcpserver.h"
#include "storage/applylogsave.h"
#include "storage/workspace.h"
#include "tools/common/arguments.h"

#include <QJsonArray>
#include <QJsonValue>
#include <QStringList>

#include <limits>
#include <optional>

namespace fb::app {

namespace {

const QString monthsKey = QStringLiteral("months");
const QString weekdaysKey = QStringLiteral("weekdays");
const QString eraNameKey = QStringLiteral("era_name");

McpToolDescriptor getCalendarTool()
{
    return toolDescriptor(
        QStringLiteral("get_calendar"),
        QStringLiteral(
            "Reads the project's calendar: its months (with lengths), weekday names, and "
            "era label -- the reckoning every timeline date is written in."));
}

McpToolDescriptor updateCalendarTool()
{
    const ToolSchema month =
        ToolSchema()
            .string(QStringLiteral("name"), QStringLiteral("The month's name."))
            .required()
            .integer(QStringLiteral("days"),
                     QStringLiteral("How many days the month has (at least 1)."))
            .required();
    return toolDescriptor(
        QStringLiteral("update_calendar"),
        QStringLiteral("Updates the project calendar. Sparse: only the provided keys change. Note "
                       "that story time is stored as absolute instants, so changing month lengths "
                       "re-reads every existing date under the new calendar."),
        ToolSchema()
            .array(monthsKey,
                   QStringLiteral("The full replacement month list: objects with \"name\" and "
                                  "\"days\"."),
                   month)
            .array(weekdaysKey, QStringLiteral("The full replacement weekday cycle."),
                   QStringLiteral("string"))
            .string(eraNameKey,
                    QStringLiteral("The era label appended to years (e.g. \"Third Age\").")));
}

McpToolResult getCalendar(const Workspace &workspace)
{
    const core::Calendar &calendar = workspace.project().calendar();
    QStringList lines{QStringLiteral("Months (%1 days per year):").arg(calendar.daysPerYear())};
    for (qsizetype index = 0; index < calendar.months.size(); ++index) {
        const core::CalendarMonth &month = calendar.months.at(index);
        lines.append(QStringLiteral("%1. %2 -- %3 days")
                         .arg(QString::number(index + 1), month.name, QString::number(month.days)));
    }
    const auto orNone = [](const QString &text) {
        return text.isEmpty() ? QStringLiteral("(none)") : text;
    };
    lines.append(
        QStringLiteral("Weekdays: %1").arg(orNone(calendar.weekdays.join(QStringLiteral(", ")))));
    lines.append(QStringLiteral("Era label: %1").arg(orNone(calendar.eraName)));
    return McpToolResult::success(lines.join(u'\n'));
}

// A value of the wrong JSON type reads as an empty list or an empty name, as every argument
// does, and is refused as such.
Result<QList<core::CalendarMonth>> readMonths(const QJsonObject &arguments)
{
    const QJsonArray items = arguments.value(monthsKey).toArray();
    if (items.isEmpty()) {
        return makeError(QStringLiteral("\"months\" must list at least one month -- a calendar "
                                        "with no months cannot express dates."));
    }
    QList<core::CalendarMonth> months;
    for (const QJsonValue &item : items) {
        const QJsonObject object = item.toObject();
        const QString name = trimmedArgument(object, QStringLiteral("name"));
        const std::optional<qint64> days = integerArgument(object, QStringLiteral("days"));
        // Lengths are stored as 32-bit counts; a longer month is refused rather than cut short.
        if (name.isEmpty() || !days || *days < 1 || *days > std::numeric_limits<qint32>::max()) {
            return makeError(QStringLiteral(
                "Each month needs a non-empty \"name\" and \"days\" of at least 1."));
        }
        months.append({name, qint32(*days)});
    }
    return months;
}

Result<QStringList> readWeekdays(const QJsonObject &arguments)
{
    const QJsonArray items = arguments.value(weekdaysKey).toArray();
    if (items.isEmpty())
        return makeError(QStringLiteral("\"weekdays\" must list at least one weekday name."));
    QStringList weekdays;
    for (const QJsonValue &item : items) {
        const QString name = item.toString().trimmed();
        if (name.isEmpty())
            return makeError(QStringLiteral("Every weekday name must be non-empty."));
        weekdays.append(name);
    }
    return weekdays;
}

McpToolResult updateCalendar(Workspace &workspace, McpChangeLog &log, const QJsonObject &arguments)
{
    core::Project &project = workspace.project();
    const bool hasMonths = hasArgument(arguments, monthsKey);
    const bool hasWeekdays = hasArgument(arguments, weekdaysKey);
    const bool hasEraName = hasArgument(arguments, eraNameKey);
    if (!hasMonths && !hasWeekdays && !hasEraName) {
        return McpToolResult::failure(
            QStringLiteral("Provide at least one of \"months\", \"weekdays\", or \"era_name\"."));
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
        next.eraName = trimmedArgument(arguments, eraNameKey);

    QStringList changed;
    if (next.months != current.months)
        changed.append(QStringLiteral("months"));
    if (next.weekdays != current.weekdays)
        changed.append(QStringLiteral("weekdays"));
    if (next.eraName != current.eraName)
        changed.append(QStringLiteral("era label"));
    if (changed.isEmpty())
        return McpToolResult::success(
            QStringLiteral("The calendar already matches; nothing changed."));

    const QString text = QStringLiteral("Updated the calendar (%1). Stored instants are unchanged "
                                        "and now read in the new calendar.")
                             .arg(changed.join(QStringLiteral(", ")));
    auto change = std::make_unique<core::CompositeCommand>(QStringLiteral("MCP: update calendar"));
    change->append(std::make_unique<core::SetCalendarCommand>(project, std::move(next)));
    return applyChange(workspace, log, std::move(change), text);
}

} // namespace

// The story calendar.
void registerCalendarTools(McpServer &server, Workspace &workspace, McpChangeLog &log)
{
    using Args = const QJsonObject &;
    server.addTool(getCalendarTool(), [&](Args) { return getCalendar(workspace); });
    server.addTool(updateCalendarTool(), [&](Args a) { return updateCalendar(workspace, log, a); });
}

} // namespace fb::app
