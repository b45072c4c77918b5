#include "core/spreadsheet.h"

namespace fb::core {

Spreadsheet::Spreadsheet(const QUuid &id)
    : ContentObject(staticType, id)
{}

Spreadsheet::Spreadsheet(const QString &title, const QUuid &id)
    : ContentObject(staticType, id)
    , m_title(title)
{}

Spreadsheet::~Spreadsheet() = default;

void Spreadsheet::setCellText(CellAddress address, const QString &text)
{
    if (text.isEmpty())
        m_cells.remove(address);
    else
        m_cells.insert(address, text);
    markChanged();
}

} // namespace fb::core
