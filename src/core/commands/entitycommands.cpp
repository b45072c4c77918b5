#include "core/commands/entitycommands.h"

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
    return QStringLiteral("Set field value");
}

QString SetEntityNameCommand::label() const
{
    return QStringLiteral("Rename entity");
}

QString SetEntityAliasesCommand::label() const
{
    return QStringLiteral("Set aliases");
}

QString SetEntityCategoryCommand::label() const
{
    return QStringLiteral("Move entity to category");
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
    return QStringLiteral("Edit lifespan");
}

QString SetEntityTimedValuesCommand::label() const
{
    return QStringLiteral("Set state over time");
}

QString SetEntityGalleryCommand::label() const
{
    return QStringLiteral("Set entity gallery");
}

QString SetEntityTemplatesCommand::label() const
{
    return QStringLiteral("Update entity templates");
}

} // namespace fb::core
