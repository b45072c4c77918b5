#pragma once

// The commands that change world data: charts, map features, media captions, spreadsheet cells
// and timeline events. Each holds the project and the object's id and is constructed as
// (Project &, object id, new value); a step whose object is gone does nothing.

#include "core/chart.h"
#include "core/commands/valuecommands.h"
#include "core/map.h"
#include "core/media.h"
#include "core/spreadsheet.h"
#include "core/timelineevent.h"

namespace fb::core {

// The chart's whole definition.
class SetChartCommand final
    : public LookupMemberSwapCommand<Chart, ChartRecord, &Chart::record, &Chart::setRecord>
{
public:
    using LookupMemberSwapCommand::LookupMemberSwapCommand;
    QString label() const override;
};

// The map's whole pin list.
class SetMapPinsCommand final
    : public LookupMemberSwapCommand<Map, QList<MapPin>, &Map::pins, &Map::setPins>
{
public:
    using LookupMemberSwapCommand::LookupMemberSwapCommand;
    QString label() const override;
};

// The map's whole region list.
class SetMapRegionsCommand final
    : public LookupMemberSwapCommand<Map, QList<MapRegion>, &Map::regions, &Map::setRegions>
{
public:
    using LookupMemberSwapCommand::LookupMemberSwapCommand;
    QString label() const override;
};

// The map's whole route list.
class SetMapRoutesCommand final
    : public LookupMemberSwapCommand<Map, QList<MapRoute>, &Map::routes, &Map::setRoutes>
{
public:
    using LookupMemberSwapCommand::LookupMemberSwapCommand;
    QString label() const override;
};

// The map's whole token list.
class SetMapTokensCommand final
    : public LookupMemberSwapCommand<Map, QList<MapToken>, &Map::tokens, &Map::setTokens>
{
public:
    using LookupMemberSwapCommand::LookupMemberSwapCommand;
    QString label() const override;
};

// The caption; an empty text clears it.
class SetMediaCaptionCommand final
    : public LookupMemberSwapCommand<Media, QString, &Media::caption, &Media::setCaption>
{
public:
    using LookupMemberSwapCommand::LookupMemberSwapCommand;
    QString label() const override;
};

// The raw text of one cell; an empty text clears the cell.
class SetSpreadsheetCellCommand final : public LookupSwapCommand<Spreadsheet, QString>
{
public:
    SetSpreadsheetCellCommand(Project &project, const QUuid &sheetId, CellAddress address,
                              const QString &text);
    QString label() const override;

private:
    QString get(const Spreadsheet &sheet) const override;
    void set(Spreadsheet &sheet, const QString &text) override;

    CellAddress m_address;
};

// The event's whole record, constraints included.
class SetTimelineEventCommand final
    : public LookupMemberSwapCommand<TimelineEvent, TimelineEventRecord, &TimelineEvent::record,
                                     &TimelineEvent::setRecord>
{
public:
    using LookupMemberSwapCommand::LookupMemberSwapCommand;
    QString label() const override;
};

} // namespace fb::core
