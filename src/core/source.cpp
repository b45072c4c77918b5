#include "core/source.h"

namespace fb::core {

Source::Source(const QUuid &id)
    : ContentObject(staticType, id)
{}

Source::Source(const QString &title, const QUuid &id)
    : ContentObject(staticType, id)
{
    m_record.title = title;
}

Source::~Source() = default;

} // namespace fb::core
