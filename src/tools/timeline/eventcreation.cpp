#include "core/commands/command.h"
#include "core/commands/structuralcommands.h"
#include "core/project.h"
#include "core/storytime.h"
#include "core/timeline.h"
#include "core/timelineevent.h"
#include "storage/workspace.h"
#include "tools/common/change.h"
#include "tools/common/objectlookup.h"
#include "tools/common/toolarguments.h"
#include "tools/common/toolcontext.h"
#include "tools/timeline/eventfields.h"
#include "tools/timeline/timelinehandlers.h"
#include "tools/timeline/timelinemodel.h"

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

// The title of the timeline made for the first event of a project that has none the agent may
// see, so that its first event never fails for want of a timeline.
const QString firstTimelineTitle = u"Timeline"_s;

// Where the new event goes: a timeline of the open project, or one to create with this title.
struct TimelineChoice
{
    core::Timeline *existing = nullptr;
    QString newTitle;
};

bool hasTimelineTitled(const core::Project &project, const QString &title)
{
    const QString key = title.trimmed().toLower();
    const auto timelines = project.objectsOfType<core::Timeline>();
    return std::any_of(timelines.cbegin(), timelines.cend(), [&](const core::Timeline *timeline) {
        return timeline->title().trimmed().toLower() == key;
    });
}

Result<TimelineChoice> chooseTimeline(ToolContext &context, const QString &name)
{
    if (name.isEmpty()) {
        const std::vector<core::Timeline *> timelines = visibleTimelines(context);
        if (timelines.empty())
            return TimelineChoice{nullptr, firstTimelineTitle};
        return TimelineChoice{timelines.front(), QString()};
    }
    // A title that no timeline of the open project has names a new one. A timeline of a mounted
    // library is not the open project's to add to, so its title names a new one here as well.
    if (!hasTimelineTitled(context.workspace().project(), name))
        return TimelineChoice{nullptr, name};
    // Otherwise the title lookup decides, with its refusals for a title that several timelines
    // share and for an AI-excluded timeline, which cannot be added to.
    const Result<core::Timeline *> found = findByTitle<core::Timeline>(context, name, u"timeline"_s,
                                                                       true, false);
    if (!found)
        return Error{found.error()};
    return TimelineChoice{*found, QString()};
}

// A new timeline is listed after every existing one.
qint32 nextTimelineSortIndex(const core::Project &project)
{
    std::optional<qint32> last;
    for (const core::Timeline *timeline : project.objectsOfType<core::Timeline>())
        last = std::max(last.value_or(timeline->sortIndex()), timeline->sortIndex());
    if (!last)
        return 0;
    return *last == std::numeric_limits<qint32>::max() ? *last : *last + 1;
}

} // namespace

McpToolResult createTimelineEvent(ToolContext &context, const ToolArguments &arguments)
{
    core::Project &project = context.workspace().project();
    const QString title = arguments.trimmed(u"title"_s);
    if (title.isEmpty() || arguments.trimmed(u"when"_s).isEmpty())
        return McpToolResult::failure(u"create_timeline_event needs \"title\" and \"when\"."_s);
    const QString timelineName = arguments.trimmed(u"timeline"_s);
    for (const auto &[argument, value] :
         {std::pair{u"title"_s, title}, std::pair{u"timeline"_s, timelineName}}) {
        if (const Result<void> line = checkSingleLine(argument, value); !line)
            return McpToolResult::failure(line.error());
    }

    const Result<qint64> start = dateArgument(context, arguments, u"when"_s);
    if (!start)
        return McpToolResult::failure(start.error());
    // A blank "until" is no end: the event is instantaneous.
    qint64 duration = 0;
    if (!arguments.trimmed(u"until"_s).isEmpty()) {
        const Result<qint64> end = dateArgument(context, arguments, u"until"_s);
        if (!end)
            return McpToolResult::failure(end.error());
        // Both dates are quoted as the calendar read them, which shows why the end comes first
        // (a lone number, say, is the first day of that year).
        if (*end < *start) {
            return McpToolResult::failure(u"The end date '%1' is before the start '%2'."_s
                                              .arg(core::formatInstant(project.calendar(), *end),
                                                   core::formatInstant(project.calendar(), *start)));
        }
        const Result<qint64> span = storableDuration(context, *start, *end);
        if (!span)
            return McpToolResult::failure(span.error());
        duration = *span;
    }
    const Result<QList<QUuid>> participants = participantsArgument(context, arguments);
    if (!participants)
        return McpToolResult::failure(participants.error());
    const Result<QUuid> location = locationArgument(context, arguments);
    if (!location)
        return McpToolResult::failure(location.error());
    const Result<TimelineChoice> timeline = chooseTimeline(context, timelineName);
    if (!timeline)
        return McpToolResult::failure(timeline.error());

    auto change = std::make_unique<core::CompositeCommand>(u"MCP: create timeline event"_s);
    core::TimelineEventRecord record;
    if (timeline->existing) {
        record.timelineId = timeline->existing->id();
        record.ordinal = nextOrdinal(project, record.timelineId, *start);
    } else {
        auto created = std::make_unique<core::Timeline>(timeline->newTitle);
        created->setSortIndex(nextTimelineSortIndex(project));
        record.timelineId = created->id();
        change->append(std::make_unique<core::AddObjectCommand>(project, std::move(created)));
    }
    record.title = title;
    record.startMinute = *start;
    record.durationMinutes = duration;
    record.participants = *participants;
    record.locationId = *location;
    record.description = arguments.trimmed(u"description"_s);
    auto event = std::make_unique<core::TimelineEvent>(title);
    event->setRecord(record);
    change->append(std::make_unique<core::AddObjectCommand>(project, std::move(event)));
    return applyChange(context, std::move(change),
                       u"Created the event '%1' at %2."_s
                           .arg(title, core::formatInstant(project.calendar(), *start)));
}

} // namespace fb::app
