#include "core/commands/command.h"
#include "core/commands/worldcommands.h"
#include "core/project.h"
#include "core/storytime.h"
#include "core/timelineevent.h"
#include "storage/workspace.h"
#include "tools/common/change.h"
#include "tools/common/objectlookup.h"
#include "tools/common/toolarguments.h"
#include "tools/common/toolcontext.h"
#include "tools/common/visibility.h"
#include "tools/timeline/eventfields.h"
#include "tools/timeline/timelinehandlers.h"
#include "tools/timeline/timelinemodel.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

const QStringList updateKeys{u"new_title"_s,   u"when"_s,         u"until"_s,
                             u"description"_s, u"participants"_s, u"location"_s};

// The event with this title (trimmed, compared case-insensitively and whole) among the events of
// every timeline of the open project. Events are addressed by title alone, so a title that
// several visible events share is refused with their dates, which tell them apart.
Result<core::TimelineEvent *> findEvent(ToolContext &context, const QString &title)
{
    core::Project &project = context.workspace().project();
    const Visibility &visibility = context.visibility();
    const QString key = title.toLower();
    std::vector<core::TimelineEvent *> kept;
    bool sawExcluded = false;
    for (core::TimelineEvent *event : project.objectsOfType<core::TimelineEvent>()) {
        if (event->title().trimmed().toLower() != key)
            continue;
        if (visibility.isVisible(*event))
            kept.push_back(event);
        else
            sawExcluded = true;
    }
    if (kept.size() == 1)
        return kept.front();
    if (kept.size() > 1) {
        std::sort(kept.begin(), kept.end(),
                  [](const core::TimelineEvent *a, const core::TimelineEvent *b) {
                      return precedesEvent(*a, *b);
                  });
        // Formatted dates hold commas, so they are set apart by semicolons.
        QStringList starts;
        for (const core::TimelineEvent *event : kept)
            starts.append(core::formatInstant(project.calendar(), event->startMinute()));
        return makeError(
            u"%1 events are titled '%2' (at %3); retitle one so the title is "
            "unique, then retry."_s.arg(QString::number(kept.size()), title, starts.join(u"; "_s)));
    }
    if (sawExcluded)
        return makeError(excludedFromAiMessage(title, true));
    return makeError(u"No timeline event titled '%1' exists."_s.arg(title));
}

// What an update changed, named in the order the tool lists its keys. A start that moves an
// event that lasts moves its end too, and both are reported.
QString changedParts(const core::TimelineEventRecord &before, const core::TimelineEventRecord &after)
{
    QStringList parts;
    if (before.title != after.title)
        parts.append(u"title"_s);
    if (before.startMinute != after.startMinute)
        parts.append(u"start"_s);
    if (endAfter(before.startMinute, before.durationMinutes)
        != endAfter(after.startMinute, after.durationMinutes)) {
        parts.append(u"end"_s);
    }
    if (before.description != after.description)
        parts.append(u"description"_s);
    if (before.participants != after.participants)
        parts.append(u"participants"_s);
    if (before.locationId != after.locationId)
        parts.append(u"location"_s);
    return parts.join(u", "_s);
}

// The dates of the record as the arguments set them. A new start without a new end moves the
// whole event: it keeps its length, as an event dragged along the timeline does.
Result<void> applyDates(ToolContext &context, const ToolArguments &arguments,
                        core::TimelineEventRecord &record)
{
    const core::Calendar &calendar = context.workspace().project().calendar();
    if (arguments.has(u"when"_s)) {
        const Result<qint64> start = dateArgument(context, arguments, u"when"_s);
        if (!start)
            return Error{start.error()};
        if (record.durationMinutes > 0 && !endAfter(*start, record.durationMinutes)) {
            return makeError(u"Moving the event to '%1' would carry its end beyond the range of "
                             "story time."_s.arg(core::formatInstant(calendar, *start)));
        }
        record.startMinute = *start;
    }
    if (!arguments.has(u"until"_s))
        return {};
    // An empty "until" makes the event instantaneous.
    if (arguments.trimmed(u"until"_s).isEmpty()) {
        record.durationMinutes = 0;
        return {};
    }
    const Result<qint64> end = dateArgument(context, arguments, u"until"_s);
    if (!end)
        return Error{end.error()};
    if (*end < record.startMinute) {
        return makeError(u"The end date '%1' is before the event's start."_s.arg(
            core::formatInstant(calendar, *end)));
    }
    const Result<qint64> span = storableDuration(context, record.startMinute, *end);
    if (!span)
        return Error{span.error()};
    record.durationMinutes = *span;
    return {};
}

// The record with every given key applied, or the first refusal.
Result<core::TimelineEventRecord> updatedRecord(ToolContext &context,
                                                const ToolArguments &arguments,
                                                core::TimelineEventRecord record)
{
    if (arguments.has(u"new_title"_s)) {
        const QString title = arguments.trimmed(u"new_title"_s);
        if (title.isEmpty())
            return makeError(u"\"new_title\" must not be empty."_s);
        if (const Result<void> line = checkSingleLine(u"new_title"_s, title); !line)
            return Error{line.error()};
        record.title = title;
    }
    if (const Result<void> dates = applyDates(context, arguments, record); !dates)
        return Error{dates.error()};
    if (arguments.has(u"description"_s))
        record.description = arguments.trimmed(u"description"_s);
    const Visibility &visibility = context.visibility();
    if (arguments.has(u"participants"_s)) {
        const Result<QList<QUuid>> participants = participantsArgument(context, arguments);
        if (!participants)
            return Error{participants.error()};
        // Participants withheld from the agent stay: it can neither see nor name them, so the
        // list it gives cannot mean to drop them.
        QList<QUuid> kept = *participants;
        for (const QUuid &id : record.participants) {
            if (visibility.isWithheldId(id) && !kept.contains(id))
                kept.append(id);
        }
        record.participants = kept;
    }
    if (arguments.has(u"location"_s)) {
        const Result<QUuid> location = locationArgument(context, arguments);
        if (!location)
            return Error{location.error()};
        // For the same reason an empty "location" clears only a location the agent can see: a
        // withheld one already looks absent to it. A new location replaces any.
        if (!location->isNull() || !visibility.isWithheldId(record.locationId))
            record.locationId = *location;
    }
    return record;
}

} // namespace

McpToolResult updateTimelineEvent(ToolContext &context, const ToolArguments &arguments)
{
    const QString title = arguments.trimmed(u"event"_s);
    if (title.isEmpty())
        return McpToolResult::failure(
            u"update_timeline_event needs \"event\" (the event's title)."_s);
    const Result<core::TimelineEvent *> found = findEvent(context, title);
    if (!found)
        return McpToolResult::failure(found.error());
    const core::TimelineEvent &event = **found;
    const bool hasAny = std::any_of(updateKeys.cbegin(), updateKeys.cend(),
                                    [&](const QString &key) { return arguments.has(key); });
    if (!hasAny) {
        return McpToolResult::failure(
            u"Provide at least one of \"new_title\", \"when\", \"until\", \"description\", "
            "\"participants\", or \"location\"."_s);
    }

    const Result<core::TimelineEventRecord> updated = updatedRecord(context, arguments,
                                                                    event.record());
    if (!updated)
        return McpToolResult::failure(updated.error());
    const QString changed = changedParts(event.record(), *updated);
    if (changed.isEmpty()) {
        return McpToolResult::success(
            u"The event '%1' already matches; nothing changed."_s.arg(event.title()));
    }
    auto change = std::make_unique<core::CompositeCommand>(u"MCP: update timeline event"_s);
    change->append(std::make_unique<core::SetTimelineEventCommand>(context.workspace().project(),
                                                                   event.id(), *updated));
    return applyChange(context, std::move(change),
                       u"Updated the event '%1' (%2)."_s.arg(updated->title, changed));
}

} // namespace fb::app
