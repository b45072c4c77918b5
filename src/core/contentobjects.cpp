#include "core/contentobjects.h"

namespace fb::core {

std::unique_ptr<ContentObject> createContentObject(ObjectType type, const QUuid &id)
{
    switch (type) {
    case ObjectType::Document:
        return std::make_unique<Document>(id);
    case ObjectType::Entity:
        return std::make_unique<Entity>(id);
    case ObjectType::Spreadsheet:
        return std::make_unique<Spreadsheet>(id);
    case ObjectType::Chart:
        return std::make_unique<Chart>(id);
    case ObjectType::Map:
        return std::make_unique<Map>(id);
    case ObjectType::Timeline:
        return std::make_unique<Timeline>(id);
    case ObjectType::TimelineEvent:
        return std::make_unique<TimelineEvent>(id);
    case ObjectType::Media:
        return std::make_unique<Media>(id);
    case ObjectType::Source:
        return std::make_unique<Source>(id);
    case ObjectType::Task:
        return std::make_unique<Task>(id);
    case ObjectType::Canvas:
        return std::make_unique<Canvas>(id);
    case ObjectType::Comment:
        return std::make_unique<Comment>(id);
    case ObjectType::Language:
        return std::make_unique<Language>(id);
    case ObjectType::RandomTable:
        return std::make_unique<RandomTable>(id);
    case ObjectType::StatBlock:
        return std::make_unique<StatBlock>(id);
    }
    return nullptr;
}

QString objectTitle(const ContentObject &object)
{
    switch (object.type()) {
    case ObjectType::Document:
        return static_cast<const Document &>(object).title();
    case ObjectType::Entity:
        return static_cast<const Entity &>(object).name();
    case ObjectType::Spreadsheet:
        return static_cast<const Spreadsheet &>(object).title();
    case ObjectType::Chart:
        return static_cast<const Chart &>(object).title();
    case ObjectType::Map:
        return static_cast<const Map &>(object).title();
    case ObjectType::Timeline:
        return static_cast<const Timeline &>(object).title();
    case ObjectType::TimelineEvent:
        return static_cast<const TimelineEvent &>(object).title();
    case ObjectType::Media:
        return mediaTitle(static_cast<const Media &>(object));
    case ObjectType::Source:
        return static_cast<const Source &>(object).title();
    case ObjectType::Task:
        return static_cast<const Task &>(object).title();
    case ObjectType::Canvas:
        return static_cast<const Canvas &>(object).title();
    case ObjectType::Comment:
        return {};
    case ObjectType::Language:
        return static_cast<const Language &>(object).name();
    case ObjectType::RandomTable:
        return static_cast<const RandomTable &>(object).title();
    case ObjectType::StatBlock:
        return static_cast<const StatBlock &>(object).title();
    }
    return {};
}

} // namespace fb::core
