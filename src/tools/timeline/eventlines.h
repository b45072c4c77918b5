#pragma once

#include <QString>

namespace fb::core {
struct Calendar;
class TimelineEvent;
} // namespace fb::core

namespace fb::app {

class EntityNames;

// Appends one event as "get_timeline" lists it, without a line break: "- start to end --
// **title** (with A, B; at Place): description", each date formatted once in the project
// calendar. The end is shown only for an event that lasts, the details only when there are any,
// the description only when there is one. Participants and a location that the agent may not
// see (or that no longer exist) are left out as if they were not set, so a withheld entity is
// never named, nor even hinted at. The line is appended to the listing in place, so that a
// timeline of thousands of events is written without a string per line.
void appendEventLine(QString &listing, const core::TimelineEvent &event,
                     const core::Calendar &calendar, const EntityNames &names);

} // namespace fb::app
