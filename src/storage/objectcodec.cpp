#include "storage/objectcodec.h"

#include "core/contentobjects.h"
#include "storage/documentcodec.h"
#include "storage/gamecodec.h"
#include "storage/planningcodec.h"
#include "storage/storedvalues.h"
#include "storage/worldcodec.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

using namespace core;

void readCommon(JsonReader &reader, ContentObject &object)
{
    object.setVisibleTo(reader.strings("visibleTo"_L1));
    object.setTags(reader.strings("tags"_L1));
    object.setAiExcluded(reader.boolean("aiExcluded"_L1));
}

void writeCommon(const ContentObject &object, QJsonObject &json)
{
    json.insert("id"_L1, idValue(object.id()));
    json.insert("type"_L1, object.typeName());
    json.insert("visibleTo"_L1, stringArray(object.visibleTo()));
    json.insert("tags"_L1, stringArray(object.tags()));
    json.insert("aiExcluded"_L1, object.isAiExcluded());
}

template<typename T>
T &as(ContentObject &object)
{
    return static_cast<T &>(object);
}

template<typename T>
const T &as(const ContentObject &object)
{
    return static_cast<const T &>(object);
}

void readTypeKeys(JsonReader &reader, ContentObject &object)
{
    switch (object.type()) {
    case ObjectType::Document:
        return readDocument(reader, as<Document>(object));
    case ObjectType::Entity:
        return readEntity(reader, as<Entity>(object));
    case ObjectType::Spreadsheet:
        return readSpreadsheet(reader, as<Spreadsheet>(object));
    case ObjectType::Chart:
        return readChart(reader, as<Chart>(object));
    case ObjectType::Map:
        return readMap(reader, as<Map>(object));
    case ObjectType::Timeline:
        return readTimeline(reader, as<Timeline>(object));
    case ObjectType::TimelineEvent:
        return readTimelineEvent(reader, as<TimelineEvent>(object));
    case ObjectType::Media:
        return readMedia(reader, as<Media>(object));
    case ObjectType::Source:
        return readSource(reader, as<Source>(object));
    case ObjectType::Task:
        return readTask(reader, as<Task>(object));
    case ObjectType::Canvas:
        return readCanvas(reader, as<Canvas>(object));
    case ObjectType::Comment:
        return readComment(reader, as<Comment>(object));
    case ObjectType::Language:
        return readLanguage(reader, as<Language>(object));
    case ObjectType::RandomTable:
        return readRandomTable(reader, as<RandomTable>(object));
    case ObjectType::StatBlock:
        return readStatBlock(reader, as<StatBlock>(object));
    }
}

void writeTypeKeys(const ContentObject &object, QJsonObject &json)
{
    switch (object.type()) {
    case ObjectType::Document:
        return writeDocument(as<Document>(object), json);
    case ObjectType::Entity:
        return writeEntity(as<Entity>(object), json);
    case ObjectType::Spreadsheet:
        return writeSpreadsheet(as<Spreadsheet>(object), json);
    case ObjectType::Chart:
        return writeChart(as<Chart>(object), json);
    case ObjectType::Map:
        return writeMap(as<Map>(object), json);
    case ObjectType::Timeline:
        return writeTimeline(as<Timeline>(object), json);
    case ObjectType::TimelineEvent:
        return writeTimelineEvent(as<TimelineEvent>(object), json);
    case ObjectType::Media:
        return writeMedia(as<Media>(object), json);
    case ObjectType::Source:
        return writeSource(as<Source>(object), json);
    case ObjectType::Task:
        return writeTask(as<Task>(object), json);
    case ObjectType::Canvas:
        return writeCanvas(as<Canvas>(object), json);
    case ObjectType::Comment:
        return writeComment(as<Comment>(object), json);
    case ObjectType::Language:
        return writeLanguage(as<Language>(object), json);
    case ObjectType::RandomTable:
        return writeRandomTable(as<RandomTable>(object), json);
    case ObjectType::StatBlock:
        return writeStatBlock(as<StatBlock>(object), json);
    }
}

} // namespace

Result<std::unique_ptr<ContentObject>> objectFromJson(const QJsonObject &json,
                                                      const QString &filePath)
{
    JsonReader reader(json);
    const QUuid id = reader.id("id"_L1);
    const std::optional<ObjectType> type = enumFromName<ObjectType>(reader.string("type"_L1));
    if (id.isNull() || !type)
        return makeError(u"Malformed object file: %1"_s.arg(QDir::toNativeSeparators(filePath)));

    std::unique_ptr<ContentObject> object = createContentObject(*type, id);
    readCommon(reader, *object);
    readTypeKeys(reader, *object);
    object->setPreservedProperties(reader.unreadProperties());
    return object;
}

QJsonObject objectToJson(const ContentObject &object)
{
    QJsonObject json = preservedJson(object.preservedProperties());
    writeCommon(object, json);
    writeTypeKeys(object, json);
    return json;
}

} // namespace fb::app
