#include "storage/documentcodec.h"

#include "core/document.h"
#include "core/entity.h"
#include "storage/storedvalues.h"

using namespace Qt::StringLiterals;

namespace fb::app {

using namespace core;

void readDocument(JsonReader &reader, Document &document)
{
    document.setBody(reader.string("body"_L1));
    document.setKind(reader.enumeration("kind"_L1, DocumentKind::Prose));
    document.setTitle(reader.string("title"_L1));
    document.setSynopsis(reader.string("synopsis"_L1));
    document.setStatus(reader.string("status"_L1));
    document.setPointOfView(reader.string("pointOfView"_L1));
    document.setTensionLevel(reader.int32("tensionLevel"_L1));
    document.setSceneInstant(reader.optionalInt64("sceneInstant"_L1));
    document.setWordCountTarget(reader.int32("wordCountTarget"_L1));
    document.setParentId(reader.id("parentId"_L1));
    document.setSortIndex(reader.int32("sortIndex"_L1));
    document.setSourceIds(reader.ids("sourceIds"_L1));
    document.setPlotThreadIds(reader.ids("plotThreadIds"_L1));
    document.setRevisionBaseline(reader.string("revisionBaseline"_L1));
    document.setVersions(reader.list<DocumentVersion>("versions"_L1, [](JsonReader &item) {
        return DocumentVersion{item.string("label"_L1), item.string("body"_L1),
                               item.dateTime("createdAt"_L1)};
    }));
    document.setVariants(reader.list<DocumentVariant>("variants"_L1, [](JsonReader &item) {
        return DocumentVariant{item.string("name"_L1), item.string("body"_L1)};
    }));
    document.setActiveVariant(reader.string("activeVariant"_L1));
    document.setFootnotes(reader.list<Footnote>("footnotes"_L1, [](JsonReader &item) {
        return Footnote{item.string("id"_L1), item.string("text"_L1), item.boolean("endnote"_L1)};
    }));
}

void writeDocument(const Document &document, QJsonObject &json)
{
    json.insert("body"_L1, document.body());
    json.insert("kind"_L1, enumName(document.kind()));
    json.insert("title"_L1, document.title());
    json.insert("synopsis"_L1, document.synopsis());
    json.insert("status"_L1, document.status());
    json.insert("pointOfView"_L1, document.pointOfView());
    json.insert("tensionLevel"_L1, document.tensionLevel());
    insertOptional(json, "sceneInstant"_L1, document.sceneInstant());
    json.insert("wordCountTarget"_L1, document.wordCountTarget());
    json.insert("parentId"_L1, idValue(document.parentId()));
    json.insert("sortIndex"_L1, document.sortIndex());
    json.insert("sourceIds"_L1, idArray(document.sourceIds()));
    json.insert("plotThreadIds"_L1, idArray(document.plotThreadIds()));
    json.insert("revisionBaseline"_L1, document.revisionBaseline());
    json.insert("versions"_L1, jsonArray(document.versions(), [](const DocumentVersion &version) {
                    return QJsonObject{{"label"_L1, version.label},
                                       {"body"_L1, version.body},
                                       {"createdAt"_L1, dateTimeValue(version.createdAt)}};
                }));
    json.insert("variants"_L1, jsonArray(document.variants(), [](const DocumentVariant &variant) {
                    return QJsonObject{{"name"_L1, variant.name}, {"body"_L1, variant.body}};
                }));
    json.insert("activeVariant"_L1, document.activeVariant());
    json.insert("footnotes"_L1, jsonArray(document.footnotes(), [](const Footnote &footnote) {
                    return QJsonObject{{"id"_L1, footnote.id},
                                       {"text"_L1, footnote.text},
                                       {"endnote"_L1, footnote.endnote}};
                }));
}

void readEntity(JsonReader &reader, Entity &entity)
{
    entity.setCategoryId(reader.id("categoryId"_L1));
    entity.setName(reader.string("name"_L1));
    entity.setAliases(reader.strings("aliases"_L1));
    entity.setGallery(reader.strings("gallery"_L1));
    entity.setValues(reader.textMap("values"_L1));
    entity.setBirthInstant(reader.optionalInt64("birthInstant"_L1));
    entity.setDeathInstant(reader.optionalInt64("deathInstant"_L1));
    entity.setTimedValues(reader.list<TimedValue>("timedValues"_L1, [](JsonReader &item) {
        return TimedValue{item.string("fieldKey"_L1), item.int64("instant"_L1),
                          storedValueText(item.value("value"_L1))};
    }));
}

void writeEntity(const Entity &entity, QJsonObject &json)
{
    json.insert("categoryId"_L1, idValue(entity.categoryId()));
    json.insert("name"_L1, entity.name());
    json.insert("aliases"_L1, stringArray(entity.aliases()));
    json.insert("gallery"_L1, stringArray(entity.gallery()));
    json.insert("values"_L1, textMapObject(entity.values()));
    insertOptional(json, "birthInstant"_L1, entity.birthInstant());
    insertOptional(json, "deathInstant"_L1, entity.deathInstant());
    json.insert("timedValues"_L1, jsonArray(entity.timedValues(), [](const TimedValue &value) {
                    return QJsonObject{{"fieldKey"_L1, value.fieldKey},
                                       {"instant"_L1, value.instant},
                                       {"value"_L1, value.value}};
                }));
}

} // namespace fb::app
