#include "core/randomtable.h"

namespace fb::core {

RandomTable::RandomTable(const QUuid &id)
    : ContentObject(staticType, id)
{}

RandomTable::RandomTable(const QString &title, const QUuid &id)
    : ContentObject(staticType, id)
{
    m_record.title = title;
}

RandomTable::~RandomTable() = default;

} // namespace fb::core
