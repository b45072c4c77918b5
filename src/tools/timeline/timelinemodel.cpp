#include "tools/timeline/timelinemodel.h"

#include "core/ids.h"
#include "core/project.h"
#include "core/timeline.h"
#include "core/timelineevent.h"
#include "storage/workspace.h"
#include "tools/common/toolcontext.h"
#include "tools/common/visibility.h"

#include <QtNumeric>

#include <algorithm>
#include <limits>

namespace fb::app {

std::vector<core::Timeline *> visibleTimelines(ToolContext &context)
{
    const Visibility &visibility = context.visibility();
    std::vector<core::Timeline *> timelines;
    for (core::Timeline *timeline : context.workspace().project().objectsOfType<core::Timeline>()) {
        if (visibility.isVisible(*timeline))
            timelines.push_back(timeline);
    }
    // Objects come in id order already, so a stable sort leaves ties in id order.
    std::stable_sort(timelines.begin(), timelines.end(),
                     [](const core::Timeline *a, const core::Timeline *b) {
                         if (a->sortIndex() != b->sortIndex())
                             return a->sortIndex() < b->sortIndex();
                         return a->title() < b->title();
                     });
    return timelines;
}

bool precedesEvent(const core::TimelineEvent &a, const core::TimelineEvent &b)
{
    if (a.startMinute() != b.startMinute())
        return a.startMinute() < b.startMinute();
    if (a.ordinal() != b.ordinal())
        return a.ordinal() < b.ordinal();
    if (a.title() != b.title())
        return a.title() < b.title();
    return core::idText(a.id()) < core::idText(b.id());
}

qint32 nextOrdinal(const core::Project &project, const QUuid &timelineId, qint64 start)
{
    std::optional<qint32> last;
    for (const core::TimelineEvent *event : project.objectsOfType<core::TimelineEvent>()) {
        if (event->timelineId() == timelineId && event->startMinute() == start)
            last = std::max(last.value_or(event->ordinal()), event->ordinal());
    }
    if (!last)
        return 0;
    return *last == std::numeric_limits<qint32>::max() ? *last : *last + 1;
}

std::optional<qint64> endAfter(qint64 start, qint64 duration)
{
    qint64 end = 0;
    if (duration <= 0 || qAddOverflow(start, duration, &end))
        return std::nullopt;
    return end;
}

std::optional<qint64> eventEnd(const core::TimelineEvent &event)
{
    return endAfter(event.startMinute(), event.durationMinutes());
}

std::optional<qint64> minutesBetween(qint64 start, qint64 end)
{
    qint64 span = 0;
    if (qSubOverflow(end, start, &span))
        return std::nullopt;
    return span;
}

} // namespace fb::app
