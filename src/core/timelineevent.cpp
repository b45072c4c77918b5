#include "core/timelineevent.h"

namespace fb::core {

TimelineEvent::TimelineEvent(const QUuid &id)
    : ContentObject(staticType, id)
{}

TimelineEvent::TimelineEvent(const QString &title, const QUuid &id)
    : ContentObject(staticType, id)
{
    m_record.title = title;
}

TimelineEvent::~TimelineEvent() = default;

} // namespace fb::core
