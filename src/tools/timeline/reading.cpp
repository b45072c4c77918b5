#include "core/project.h"
#include "core/storytime.h"
#include "core/timeline.h"
#include "core/timelineevent.h"
#include "storage/workspace.h"
#include "tools/common/entitynames.h"
#include "tools/common/objectlookup.h"
#include "tools/common/toolarguments.h"
#include "tools/common/toolcontext.h"
#include "tools/common/visibility.h"
#include "tools/timeline/eventlines.h"
#include "tools/timeline/timelinehandlers.h"
#include "tools/timeline/timelinemodel.h"

#include <QHash>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

using EventList = std::vector<const core::TimelineEvent *>;

// A rough size of one listed event, so that the listing is allocated once for most timelines.
constexpr qsizetype typicalEventLine = 160;

// Appends one listed section: a heading, the timeline's description when it has one, its events
// in order. Sections are set apart by a blank line.
void appendSection(QString &listing, const QString &heading, const QString &description,
                   EventList events, const core::Calendar &calendar, const EntityNames &names)
{
    if (!listing.isEmpty())
        listing += u"\n\n"_s;
    listing += u"# "_s + heading;
    if (const QString trimmed = description.trimmed(); !trimmed.isEmpty())
        listing += u'\n' + trimmed;
    if (events.empty())
        listing += u"\nNo events yet."_s;
    std::sort(events.begin(), events.end(),
              [](const core::TimelineEvent *a, const core::TimelineEvent *b) {
                  return precedesEvent(*a, *b);
              });
    for (const core::TimelineEvent *event : events) {
        listing += u'\n';
        appendEventLine(listing, *event, calendar, names);
    }
}

// The eras in story order (by start, then end, then name): the list reads as a chronology, like
// the events above it, whatever order the eras were defined in.
void appendEras(QString &listing, const core::Project &project)
{
    QList<core::TimelineEra> eras = project.timelineEras();
    std::stable_sort(eras.begin(), eras.end(),
                     [](const core::TimelineEra &a, const core::TimelineEra &b) {
                         if (a.startMinute != b.startMinute)
                             return a.startMinute < b.startMinute;
                         if (a.endMinute != b.endMinute)
                             return a.endMinute < b.endMinute;
                         return a.name < b.name;
                     });
    listing += u"\n\n## Eras"_s;
    for (const core::TimelineEra &era : eras) {
        listing += u"\n- %1: %2 to %3"_s.arg(era.name,
                                             core::formatInstant(project.calendar(),
                                                                 era.startMinute),
                                             core::formatInstant(project.calendar(), era.endMinute));
    }
}

} // namespace

McpToolResult getTimeline(ToolContext &context, const ToolArguments &arguments)
{
    const core::Project &project = context.workspace().project();
    const Visibility &visibility = context.visibility();

    // An empty "timeline" reads like an omitted one: every timeline.
    const QString wanted = arguments.trimmed(u"timeline"_s);
    std::vector<core::Timeline *> timelines;
    if (wanted.isEmpty()) {
        timelines = visibleTimelines(context);
    } else {
        const Result<core::Timeline *> found = findByTitle<core::Timeline>(context, wanted,
                                                                           u"timeline"_s, false);
        if (!found)
            return McpToolResult::failure(found.error());
        timelines.push_back(*found);
    }

    // Every visible event, filed under its timeline in one pass.
    QHash<QUuid, EventList> byTimeline;
    qsizetype eventCount = 0;
    for (const core::TimelineEvent *event : project.objectsOfType<core::TimelineEvent>()) {
        if (visibility.isVisible(*event)) {
            byTimeline[event->timelineId()].push_back(event);
            ++eventCount;
        }
    }

    const EntityNames names(context);
    QString listing;
    listing.reserve(typicalEventLine * (eventCount + 8));
    for (const core::Timeline *timeline : timelines) {
        appendSection(listing, timeline->title(), timeline->description(),
                      byTimeline.take(timeline->id()), project.calendar(), names);
    }
    // Events whose timeline is gone are still events the agent can address and change, so a
    // reading of every timeline shows them too rather than hiding them. What is left in the map
    // are those, and the events of timelines that are not listed.
    if (wanted.isEmpty()) {
        EventList orphans;
        for (auto it = byTimeline.cbegin(); it != byTimeline.cend(); ++it) {
            if (!project.objectAs<core::Timeline>(it.key()))
                orphans.insert(orphans.end(), it->begin(), it->end());
        }
        if (!orphans.empty()) {
            appendSection(listing, u"Events on no timeline"_s, QString(), std::move(orphans),
                          project.calendar(), names);
        }
    }

    if (listing.isEmpty())
        listing = u"No timelines yet."_s;
    // The eras belong to the whole project and frame every timeline, so they follow whichever
    // timelines were read; a project without eras shows no era heading.
    if (!project.timelineEras().isEmpty())
        appendEras(listing, project);
    return McpToolResult::success(listing);
}

} // namespace fb::app
