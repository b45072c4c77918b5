#include "core/document.h"

#include "core/ids.h"

namespace fb::core {

Document::Document(const QUuid &id)
    : ContentObject(staticType, id)
{}

Document::Document(const QString &title, const QUuid &id)
    : ContentObject(staticType, id)
    , m_title(title)
{}

Document::~Document() = default;

bool precedesSibling(const Document &a, const Document &b)
{
    if (a.sortIndex() != b.sortIndex())
        return a.sortIndex() < b.sortIndex();
    if (a.title() != b.title())
        return a.title() < b.title();
    return compareIds(a.id(), b.id()) < 0;
}

} // namespace fb::core
