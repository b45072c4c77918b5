#include "core/map.h"

namespace fb::core {

Map::Map(const QUuid &id)
    : ContentObject(staticType, id)
{}

Map::Map(const QString &title, const QUuid &id)
    : ContentObject(staticType, id)
    , m_title(title)
{}

Map::~Map() = default;

} // namespace fb::core
