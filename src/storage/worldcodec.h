#pragma once

#include <QJsonObject>

namespace fb::core {
class Chart;
class Map;
class Media;
class Spreadsheet;
class Timeline;
class TimelineEvent;
} // namespace fb::core

namespace fb::app {

class JsonReader;

// The type keys of world data: spreadsheets, charts, maps, timelines and their events, media
// (see objectcodec.h for the stored forms).
void readSpreadsheet(JsonReader &reader, core::Spreadsheet &sheet);
void writeSpreadsheet(const core::Spreadsheet &sheet, QJsonObject &json);

void readChart(JsonReader &reader, core::Chart &chart);
void writeChart(const core::Chart &chart, QJsonObject &json);

void readMap(JsonReader &reader, core::Map &map);
void writeMap(const core::Map &map, QJsonObject &json);

void readTimeline(JsonReader &reader, core::Timeline &timeline);
void writeTimeline(const core::Timeline &timeline, QJsonObject &json);

void readTimelineEvent(JsonReader &reader, core::TimelineEvent &event);
void writeTimelineEvent(const core::TimelineEvent &event, QJsonObject &json);

void readMedia(JsonReader &reader, core::Media &media);
void writeMedia(const core::Media &media, QJsonObject &json);

} // namespace fb::app
