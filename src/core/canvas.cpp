#include "core/canvas.h"

namespace fb::core {

Canvas::Canvas(const QUuid &id)
    : ContentObject(staticType, id)
{}

Canvas::Canvas(const QString &title, const QUuid &id)
    : ContentObject(staticType, id)
    , m_title(title)
{}

Canvas::~Canvas() = default;

} // namespace fb::core
