#include "core/entity.h"

namespace fb::core {

Entity::Entity(const QUuid &id)
    : ContentObject(staticType, id)
{}

Entity::Entity(const QString &name, const QUuid &id)
    : ContentObject(staticType, id)
    , m_name(name)
{}

Entity::~Entity() = default;

} // namespace fb::core
