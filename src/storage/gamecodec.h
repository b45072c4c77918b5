#pragma once

#include <QJsonObject>

namespace fb::core {
class Language;
class RandomTable;
class StatBlock;
} // namespace fb::core

namespace fb::app {

class JsonReader;

// The type keys of constructed languages, random tables and stat blocks (see objectcodec.h
// for the stored forms).
void readLanguage(JsonReader &reader, core::Language &language);
void writeLanguage(const core::Language &language, QJsonObject &json);

void readRandomTable(JsonReader &reader, core::RandomTable &table);
void writeRandomTable(const core::RandomTable &table, QJsonObject &json);

void readStatBlock(JsonReader &reader, core::StatBlock &block);
void writeStatBlock(const core::StatBlock &block, QJsonObject &json);

} // namespace fb::app
