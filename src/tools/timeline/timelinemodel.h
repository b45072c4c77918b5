#pragma once

#include <QUuid>

#include <optional>
#include <vector>

namespace fb::core {
class Project;
class Timeline;
class TimelineEvent;
} // namespace fb::core

namespace fb::app {

class ToolContext;

// How the timeline tools read the model: the order of timelines and events, and the spans of
// events in story minutes.

// The open project's timelines that the agent may see, by sort index, then title, then id text,
// so the order is the same after every reload. The first of them is "the project's first
// timeline".
std::vector<core::Timeline *> visibleTimelines(ToolContext &context);

// Events are listed by start, then ordinal (the writer's order among events at one instant),
// then title, then id text for a stable order among events that agree on all three.
bool precedesEvent(const core::TimelineEvent &a, const core::TimelineEvent &b);

// The ordinal of a new event at this start on the timeline: after every event already there at
// that instant (withheld ones included, as the ordinals belong to the whole timeline), so it is
// listed last among them; 0 when it is the first.
qint32 nextOrdinal(const core::Project &project, const QUuid &timelineId, qint64 start);

// The end of an event that lasts (a positive duration), or nothing for an instantaneous one or
// one whose end lies beyond the range of story time.
std::optional<qint64> eventEnd(const core::TimelineEvent &event);
std::optional<qint64> endAfter(qint64 start, qint64 duration);

// The minutes from start to end, or nothing when the span does not fit in 64 bits.
std::optional<qint64> minutesBetween(qint64 start, qint64 end);

} // namespace fb::app
