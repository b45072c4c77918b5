#include "core/commands/entitycommands.h"

using namespace Qt::StringLiterals;

namespace fb::core {

namespace {

std::optional<QString> storedFieldValue(const QString &value)
{
    return value.isEmpty() ? std::nullopt : std::optional<QString>(value);
}

} // namespace

SetFieldValueCommand::SetFieldValueCommand(Project &project, const QUuid &entityId,
                                           const QString &fieldKey, const QString &value)
    : LookupSwapCommand(project, entityId, storedFieldValue(value))
    , m_key(fieldKey)
{}

std::optional<QString> SetFieldValueCommand::get(const Entity &entity) const
{
    const auto value = entity.values().constFind(m_key);
    return value == entity.values().cend() ? std::nullopt : std::optional<QString>(*value);
}

void SetFieldValueCommand::set(Entity &entity, const std::optional<QString> &value)
{
    QMap<QString, QString> values = entity.values();
    if (value)
        values.insert(m_key, *value);
    else
        values.remove(m_key);
    entity.setValues(values);
}

QString SetFieldValueCommand::label() const
{
    return u"Set field value"_s;
}

QString SetEntityNameCommand::label() const
{
    return u"Rename entity"_s;
}

QString SetEntityAliasesCommand::label() const
{
    return u"Set aliases"_s;
}

QString SetEntityCategoryCommand::label() const
{
    return u"Move entity to category"_s;
}

EntityLifespan entityLifespan(const Entity &entity)
{
    return {entity.birthInstant(), entity.deathInstant()};
}

void setEntityLifespan(Entity &entity, const EntityLifespan &lifespan)
{
    entity.setBirthInstant(lifespan.birth);
    entity.setDeathInstant(lifespan.death);
}

QString SetEntityLifespanCommand::label() const
{
    return u"Edit lifespan"_s;
}

QString SetEntityTimedValuesCommand::label() const
{
    return u"Set state over time"_s;
}

QString SetEntityGalleryCommand::label() const
{
    return u"Set entity gallery"_s;
}

QString SetEntityTemplatesCommand::label() const
{
    return u"Update entity templates"_s;
}

} // namespace fb::core
