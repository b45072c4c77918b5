#include "core/language.h"

namespace fb::core {

Language::Language(const QUuid &id)
    : ContentObject(staticType, id)
{}

Language::Language(const QString &name, const QUuid &id)
    : ContentObject(staticType, id)
{
    m_record.name = name;
}

Language::~Language() = default;

} // namespace fb::core
