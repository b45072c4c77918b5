#include "core/statblock.h"

namespace fb::core {

StatBlock::StatBlock(const QUuid &id)
    : ContentObject(staticType, id)
{}

StatBlock::StatBlock(const QString &title, const QUuid &id)
    : ContentObject(staticType, id)
{
    m_record.title = title;
}

StatBlock::~StatBlock() = default;

} // namespace fb::core
