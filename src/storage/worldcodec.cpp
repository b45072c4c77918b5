#include "storage/worldcodec.h"

#include "core/chart.h"
#include "core/map.h"
#include "core/media.h"
#include "core/spreadsheet.h"
#include "core/timeline.h"
#include "core/timelineevent.h"
#include "storage/storedvalues.h"

using namespace Qt::StringLiterals;

namespace fb::app {

using namespace core;

namespace {

CellAddress readAddress(JsonReader &item)
{
    return CellAddress{item.int32("row"_L1), item.int32("column"_L1)};
}

QJsonObject addressJson(CellAddress address)
{
    return QJsonObject{{"row"_L1, address.row}, {"column"_L1, address.column}};
}

CellFormat readCellFormat(JsonReader &item)
{
    CellFormat format;
    format.bold = item.boolean("bold"_L1);
    format.italic = item.boolean("italic"_L1);
    format.underline = item.boolean("underline"_L1);
    format.strikeOut = item.boolean("strikeOut"_L1);
    format.fontFamily = item.string("fontFamily"_L1);
    format.fontPointSize = item.number("fontPointSize"_L1);
    format.textColor = item.string("textColor"_L1);
    format.backgroundColor = item.string("backgroundColor"_L1);
    format.alignment = item.enumeration("alignment"_L1, CellAlignment::Default);
    format.numberFormat = item.enumeration("numberFormat"_L1, NumberFormat::General);
    format.decimalPlaces = item.int32("decimalPlaces"_L1, format.decimalPlaces);
    return format;
}

void insertCellFormat(const CellFormat &format, QJsonObject &json)
{
    json.insert("bold"_L1, format.bold);
    json.insert("italic"_L1, format.italic);
    json.insert("underline"_L1, format.underline);
    json.insert("strikeOut"_L1, format.strikeOut);
    json.insert("fontFamily"_L1, format.fontFamily);
    json.insert("fontPointSize"_L1, format.fontPointSize);
    json.insert("textColor"_L1, format.textColor);
    json.insert("backgroundColor"_L1, format.backgroundColor);
    json.insert("alignment"_L1, enumName(format.alignment));
    json.insert("numberFormat"_L1, enumName(format.numberFormat));
    json.insert("decimalPlaces"_L1, format.decimalPlaces);
}

QMap<qint32, double> readSizes(JsonReader &reader, QLatin1StringView key)
{
    QMap<qint32, double> sizes;
    const auto entries = reader.list<std::pair<qint32, double>>(key, [](JsonReader &item) {
        return std::pair(item.int32("index"_L1), item.number("size"_L1));
    });
    for (const auto &[index, size] : entries)
        sizes.insert(index, size);
    return sizes;
}

QJsonArray sizesJson(const QMap<qint32, double> &sizes)
{
    QJsonArray result;
    for (auto it = sizes.cbegin(); it != sizes.cend(); ++it)
        result.append(QJsonObject{{"index"_L1, it.key()}, {"size"_L1, it.value()}});
    return result;
}

MapPoint readPoint(JsonReader &item)
{
    return MapPoint{item.number("x"_L1), item.number("y"_L1)};
}

void insertPoint(MapPoint point, QJsonObject &json)
{
    json.insert("x"_L1, point.x);
    json.insert("y"_L1, point.y);
}

} // namespace

void readSpreadsheet(JsonReader &reader, Spreadsheet &sheet)
{
    sheet.setTitle(reader.string("title"_L1));
    sheet.setRowCount(reader.int32("rowCount"_L1));
    sheet.setColumnCount(reader.int32("columnCount"_L1));

    QMap<CellAddress, QString> cells;
    const auto cellList
        = reader.list<std::pair<CellAddress, QString>>("cells"_L1, [](JsonReader &item) {
              return std::pair(readAddress(item), item.string("text"_L1));
          });
    for (const auto &[address, text] : cellList) {
        if (!text.isEmpty())
            cells.insert(address, text);
    }
    sheet.setCells(cells);

    QMap<CellAddress, CellFormat> formats;
    const auto formatList
        = reader.list<std::pair<CellAddress, CellFormat>>("formats"_L1, [](JsonReader &item) {
              return std::pair(readAddress(item), readCellFormat(item));
          });
    for (const auto &[address, format] : formatList)
        formats.insert(address, format);
    sheet.setFormats(formats);

    sheet.setColumnWidths(readSizes(reader, "columnWidths"_L1));
    sheet.setRowHeights(readSizes(reader, "rowHeights"_L1));
    sheet.setLinkedCategoryId(reader.id("linkedCategoryId"_L1));
}

void writeSpreadsheet(const Spreadsheet &sheet, QJsonObject &json)
{
    json.insert("title"_L1, sheet.title());
    json.insert("rowCount"_L1, sheet.rowCount());
    json.insert("columnCount"_L1, sheet.columnCount());

    QJsonArray cells;
    for (auto it = sheet.cells().cbegin(); it != sheet.cells().cend(); ++it) {
        QJsonObject cell = addressJson(it.key());
        cell.insert("text"_L1, it.value());
        cells.append(cell);
    }
    json.insert("cells"_L1, cells);

    QJsonArray formats;
    for (auto it = sheet.formats().cbegin(); it != sheet.formats().cend(); ++it) {
        QJsonObject format = addressJson(it.key());
        insertCellFormat(it.value(), format);
        formats.append(format);
    }
    json.insert("formats"_L1, formats);

    json.insert("columnWidths"_L1, sizesJson(sheet.columnWidths()));
    json.insert("rowHeights"_L1, sizesJson(sheet.rowHeights()));
    json.insert("linkedCategoryId"_L1, idValue(sheet.linkedCategoryId()));
}

void readChart(JsonReader &reader, Chart &chart)
{
    ChartRecord record;
    record.title = reader.string("title"_L1);
    record.kind = reader.enumeration("kind"_L1, ChartKind::Bar);
    record.categories = reader.strings("categories"_L1);
    record.series = reader.list<ChartSeries>("series"_L1, [](JsonReader &item) {
        ChartSeries series;
        series.name = item.string("name"_L1);
        for (const QJsonValue &value : item.array("values"_L1))
            series.values.append(value.toDouble());
        return series;
    });
    record.valueAxisTitle = reader.string("valueAxisTitle"_L1);
    record.categoryAxisTitle = reader.string("categoryAxisTitle"_L1);
    chart.setRecord(record);
}

void writeChart(const Chart &chart, QJsonObject &json)
{
    json.insert("title"_L1, chart.title());
    json.insert("kind"_L1, enumName(chart.kind()));
    json.insert("categories"_L1, stringArray(chart.categories()));
    json.insert("series"_L1, jsonArray(chart.series(), [](const ChartSeries &series) {
                    QJsonArray values;
                    for (const double value : series.values)
                        values.append(value);
                    return QJsonObject{{"name"_L1, series.name}, {"values"_L1, values}};
                }));
    json.insert("valueAxisTitle"_L1, chart.valueAxisTitle());
    json.insert("categoryAxisTitle"_L1, chart.categoryAxisTitle());
}

void readMap(JsonReader &reader, Map &map)
{
    map.setTitle(reader.string("title"_L1));
    map.setImageAssetPath(reader.string("imageAssetPath"_L1));
    map.setRegions(reader.list<MapRegion>("regions"_L1, [](JsonReader &item) {
        MapRegion region;
        region.label = item.string("label"_L1);
        region.points = item.list<MapPoint>("points"_L1, readPoint);
        region.linkedEntityId = item.id("linkedEntityId"_L1);
        region.linkedMapId = item.id("linkedMapId"_L1);
        region.layer = item.string("layer"_L1);
        region.revealed = item.boolean("revealed"_L1, region.revealed);
        region.preservedProperties = item.unreadProperties();
        return region;
    }));
    map.setRoutes(reader.list<MapRoute>("routes"_L1, [](JsonReader &item) {
        MapRoute route;
        route.fromEntityId = item.id("fromEntityId"_L1);
        route.toEntityId = item.id("toEntityId"_L1);
        route.distance = item.number("distance"_L1);
        route.note = item.string("note"_L1);
        route.preservedProperties = item.unreadProperties();
        return route;
    }));
    map.setTravelSpeedPerHour(reader.number("travelSpeedPerHour"_L1));
    map.setDistanceUnit(reader.string("distanceUnit"_L1));
    map.setWidthDistance(reader.number("widthDistance"_L1));
    map.setPins(reader.list<MapPin>("pins"_L1, [](JsonReader &item) {
        MapPin pin;
        pin.label = item.string("label"_L1);
        pin.note = item.string("note"_L1);
        pin.position = readPoint(item);
        pin.preservedProperties = item.unreadProperties();
        return pin;
    }));
    map.setGridKind(reader.enumeration("gridKind"_L1, GridKind::None));
    map.setGridColumns(reader.int32("gridColumns"_L1));
    map.setGridColor(reader.string("gridColor"_L1));
    map.setTokens(reader.list<MapToken>("tokens"_L1, [](JsonReader &item) {
        MapToken token;
        token.label = item.string("label"_L1);
        token.color = item.string("color"_L1);
        token.entityId = item.id("entityId"_L1);
        token.position = readPoint(item);
        token.preservedProperties = item.unreadProperties();
        return token;
    }));
}

void writeMap(const Map &map, QJsonObject &json)
{
    json.insert("title"_L1, map.title());
    json.insert("imageAssetPath"_L1, map.imageAssetPath());
    json.insert("regions"_L1, jsonArray(map.regions(), [](const MapRegion &region) {
                    QJsonObject item = preservedJson(region.preservedProperties);
                    item.insert("label"_L1, region.label);
                    item.insert("points"_L1, jsonArray(region.points, [](const MapPoint &point) {
                                    QJsonObject stored;
                                    insertPoint(point, stored);
                                    return stored;
                                }));
                    item.insert("linkedEntityId"_L1, idValue(region.linkedEntityId));
                    item.insert("linkedMapId"_L1, idValue(region.linkedMapId));
                    item.insert("layer"_L1, region.layer);
                    item.insert("revealed"_L1, region.revealed);
                    return item;
                }));
    json.insert("routes"_L1, jsonArray(map.routes(), [](const MapRoute &route) {
                    QJsonObject item = preservedJson(route.preservedProperties);
                    item.insert("fromEntityId"_L1, idValue(route.fromEntityId));
                    item.insert("toEntityId"_L1, idValue(route.toEntityId));
                    item.insert("distance"_L1, route.distance);
                    item.insert("note"_L1, route.note);
                    return item;
                }));
    json.insert("travelSpeedPerHour"_L1, map.travelSpeedPerHour());
    json.insert("distanceUnit"_L1, map.distanceUnit());
    json.insert("widthDistance"_L1, map.widthDistance());
    json.insert("pins"_L1, jsonArray(map.pins(), [](const MapPin &pin) {
                    QJsonObject item = preservedJson(pin.preservedProperties);
                    item.insert("label"_L1, pin.label);
                    item.insert("note"_L1, pin.note);
                    insertPoint(pin.position, item);
                    return item;
                }));
    json.insert("gridKind"_L1, enumName(map.gridKind()));
    json.insert("gridColumns"_L1, map.gridColumns());
    json.insert("gridColor"_L1, map.gridColor());
    json.insert("tokens"_L1, jsonArray(map.tokens(), [](const MapToken &token) {
                    QJsonObject item = preservedJson(token.preservedProperties);
                    item.insert("label"_L1, token.label);
                    item.insert("color"_L1, token.color);
                    item.insert("entityId"_L1, idValue(token.entityId));
                    insertPoint(token.position, item);
                    return item;
                }));
}

void readTimeline(JsonReader &reader, Timeline &timeline)
{
    timeline.setTitle(reader.string("title"_L1));
    timeline.setDescription(reader.string("description"_L1));
    timeline.setSortIndex(reader.int32("sortIndex"_L1));
}

void writeTimeline(const Timeline &timeline, QJsonObject &json)
{
    json.insert("title"_L1, timeline.title());
    json.insert("description"_L1, timeline.description());
    json.insert("sortIndex"_L1, timeline.sortIndex());
}

void readTimelineEvent(JsonReader &reader, TimelineEvent &event)
{
    TimelineEventRecord record;
    record.timelineId = reader.id("timelineId"_L1);
    record.title = reader.string("title"_L1);
    record.startMinute = reader.int64("startMinute"_L1);
    record.durationMinutes = reader.int64("durationMinutes"_L1);
    record.ordinal = reader.int32("ordinal"_L1);
    record.dateQualifier = reader.string("dateQualifier"_L1);
    record.participants = reader.ids("participants"_L1);
    record.locationId = reader.id("locationId"_L1);
    record.parentId = reader.id("parentId"_L1);
    record.collapsed = reader.boolean("collapsed"_L1);
    record.constraints = reader.list<EventConstraint>("constraints"_L1, [](JsonReader &item) {
        return EventConstraint{item.id("otherId"_L1), item.string("kind"_L1)};
    });
    record.sceneIds = reader.ids("sceneIds"_L1);
    record.description = reader.string("description"_L1);
    record.styleColor = reader.string("styleColor"_L1);
    record.styleLabel = reader.string("styleLabel"_L1);
    record.layer = reader.string("layer"_L1);
    event.setRecord(record);
}

void writeTimelineEvent(const TimelineEvent &event, QJsonObject &json)
{
    const TimelineEventRecord &record = event.record();
    json.insert("timelineId"_L1, idValue(record.timelineId));
    json.insert("title"_L1, record.title);
    json.insert("startMinute"_L1, record.startMinute);
    json.insert("durationMinutes"_L1, record.durationMinutes);
    json.insert("ordinal"_L1, record.ordinal);
    json.insert("dateQualifier"_L1, record.dateQualifier);
    json.insert("participants"_L1, idArray(record.participants));
    json.insert("locationId"_L1, idValue(record.locationId));
    json.insert("parentId"_L1, idValue(record.parentId));
    json.insert("collapsed"_L1, record.collapsed);
    json.insert("constraints"_L1, jsonArray(record.constraints, [](const EventConstraint &c) {
                    return QJsonObject{{"otherId"_L1, idValue(c.otherId)}, {"kind"_L1, c.kind}};
                }));
    json.insert("sceneIds"_L1, idArray(record.sceneIds));
    json.insert("description"_L1, record.description);
    json.insert("styleColor"_L1, record.styleColor);
    json.insert("styleLabel"_L1, record.styleLabel);
    json.insert("layer"_L1, record.layer);
}

void readMedia(JsonReader &reader, Media &media)
{
    media.setKind(reader.string("kind"_L1));
    media.setCaption(reader.string("caption"_L1));
    media.setAssetPath(reader.string("assetPath"_L1));
    media.setAnnotations(reader.list<Annotation>("annotations"_L1, [](JsonReader &item) {
        Annotation annotation;
        annotation.type = item.string("type"_L1);
        annotation.color = item.string("color"_L1);
        annotation.text = item.string("text"_L1);
        annotation.preservedProperties = item.unreadProperties();
        return annotation;
    }));
    const QJsonValue crop = reader.value("crop"_L1);
    media.setCrop(crop.isUndefined() ? QVariant() : crop.toVariant());
}

void writeMedia(const Media &media, QJsonObject &json)
{
    json.insert("kind"_L1, media.kind());
    json.insert("caption"_L1, media.caption());
    json.insert("assetPath"_L1, media.assetPath());
    json.insert("annotations"_L1, jsonArray(media.annotations(), [](const Annotation &annotation) {
                    QJsonObject item = preservedJson(annotation.preservedProperties);
                    item.insert("type"_L1, annotation.type);
                    item.insert("color"_L1, annotation.color);
                    item.insert("text"_L1, annotation.text);
                    return item;
                }));
    if (media.crop().isValid())
        json.insert("crop"_L1, QJsonValue::fromVariant(media.crop()));
}

} // namespace fb::app
