#include "core/commands/worldcommands.h"

using namespace Qt::StringLiterals;

namespace fb::core {

QString SetChartCommand::label() const
{
    return u"Edit chart"_s;
}

QString SetMapPinsCommand::label() const
{
    return u"Edit map pins"_s;
}

QString SetMapRegionsCommand::label() const
{
    return u"Edit map regions"_s;
}

QString SetMapRoutesCommand::label() const
{
    return u"Edit map routes"_s;
}

QString SetMapTokensCommand::label() const
{
    return u"Edit map tokens"_s;
}

QString SetMediaCaptionCommand::label() const
{
    return u"Edit caption"_s;
}

SetSpreadsheetCellCommand::SetSpreadsheetCellCommand(Project &project, const QUuid &sheetId,
                                                     CellAddress address, const QString &text)
    : LookupSwapCommand(project, sheetId, text)
    , m_address(address)
{}

QString SetSpreadsheetCellCommand::get(const Spreadsheet &sheet) const
{
    return sheet.cellText(m_address);
}

void SetSpreadsheetCellCommand::set(Spreadsheet &sheet, const QString &text)
{
    sheet.setCellText(m_address, text);
}

QString SetSpreadsheetCellCommand::label() const
{
    return u"Edit cell"_s;
}

QString SetTimelineEventCommand::label() const
{
    return u"Edit timeline event"_s;
}

} // namespace fb::core
