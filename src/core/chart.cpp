#include "core/chart.h"

namespace fb::core {

Chart::Chart(const QUuid &id)
    : ContentObject(staticType, id)
{}

Chart::Chart(const QString &title, const QUuid &id)
    : ContentObject(staticType, id)
{
    m_record.title = title;
}

Chart::~Chart() = default;

} // namespace fb::core
