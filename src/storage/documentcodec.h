#pragma once

#include <QJsonObject>

namespace fb::core {
class Document;
class Entity;
} // namespace fb::core

namespace fb::app {

class JsonReader;

// The type keys of documents and codex entities (see objectcodec.h for the stored forms).
void readDocument(JsonReader &reader, core::Document &document);
void writeDocument(const core::Document &document, QJsonObject &json);

void readEntity(JsonReader &reader, core::Entity &entity);
void writeEntity(const core::Entity &entity, QJsonObject &json);

} // namespace fb::app
