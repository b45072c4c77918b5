#include "core/timeline.h"

namespace fb::core {

Timeline::Timeline(const QUuid &id)
    : ContentObject(staticType, id)
{}

Timeline::Timeline(const QString &title, const QUuid &id)
    : ContentObject(staticType, id)
    , m_title(title)
{}

Timeline::~Timeline() = default;

} // namespace fb::core
