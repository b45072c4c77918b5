#include "core/commands/worldcommands.h"

namespace fb::core {

QString SetChartCommand::label() const
{
    return QStringLiteral("Edit chart");
}

QString SetMapPinsCommand::label() const
{
    return QStringLiteral("Edit map pins");
}

QString SetMapRegionsCommand::label() const
{
    return QStringLiteral("Edit map regions");
}

QString SetMapRoutesCommand::label() const
{
    return QStringLiteral("Edit map routes");
}

QString SetMapTokensCommand::label() const
{
    return QStringLiteral("Edit map tokens");
}

QString SetMediaCaptionCommand::label() const
{
    return QStringLiteral("Edit caption");
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
    return QStringLiteral("Edit cell");
}

QString SetTimelineEventCommand::label() const
{
    return QStringLiteral("Edit timeline event");
}

} // namespace fb::core
