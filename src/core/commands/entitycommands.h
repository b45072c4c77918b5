#pragma once

// The commands that change one aspect of a codex entity, and the project's entity templates.
// Entity commands hold the project and the entity's id and are constructed as
// (Project &, entity id, new value); a step whose entity is gone does nothing.

#include "core/commands/valuecommands.h"
#include "core/entity.h"

namespace fb::core {

template<typename Value, auto Getter, auto Setter>
using EntitySwapCommand = LookupMemberSwapCommand<Entity, Value, Getter, Setter>;

// One field value, by field key. An empty value removes the key, so a cleared field leaves
// nothing behind; undo restores the key exactly as it was, present or absent.
class SetFieldValueCommand final : public LookupSwapCommand<Entity, std::optional<QString>>
{
public:
    SetFieldValueCommand(Project &project, const QUuid &entityId, const QString &fieldKey,
                         const QString &value);
    QString label() const override;

private:
    std::optional<QString> get(const Entity &entity) const override;
    void set(Entity &entity, const std::optional<QString> &value) override;

    QString m_key;
};

class SetEntityNameCommand final
    : public EntitySwapCommand<QString, &Entity::name, &Entity::setName>
{
public:
    using LookupMemberSwapCommand::LookupMemberSwapCommand;
    QString label() const override;
};

// The whole alias list.
class SetEntityAliasesCommand final
    : public EntitySwapCommand<QStringList, &Entity::aliases, &Entity::setAliases>
{
public:
    using LookupMemberSwapCommand::LookupMemberSwapCommand;
    QString label() const override;
};

// The category the entity is filed in; the null id files it in none.
class SetEntityCategoryCommand final
    : public EntitySwapCommand<QUuid, &Entity::categoryId, &Entity::setCategoryId>
{
public:
    using LookupMemberSwapCommand::LookupMemberSwapCommand;
    QString label() const override;
};

// Birth and death together, each a story instant or absent.
struct EntityLifespan
{
    std::optional<qint64> birth;
    std::optional<qint64> death;

    bool operator==(const EntityLifespan &) const = default;
};

EntityLifespan entityLifespan(const Entity &entity);
void setEntityLifespan(Entity &entity, const EntityLifespan &lifespan);

class SetEntityLifespanCommand final
    : public EntitySwapCommand<EntityLifespan, &entityLifespan, &setEntityLifespan>
{
public:
    using LookupMemberSwapCommand::LookupMemberSwapCommand;
    QString label() const override;
};

// The whole list of values over story time.
class SetEntityTimedValuesCommand final
    : public EntitySwapCommand<QList<TimedValue>, &Entity::timedValues, &Entity::setTimedValues>
{
public:
    using LookupMemberSwapCommand::LookupMemberSwapCommand;
    QString label() const override;
};

// The whole list of gallery asset paths.
class SetEntityGalleryCommand final
    : public EntitySwapCommand<QStringList, &Entity::gallery, &Entity::setGallery>
{
public:
    using LookupMemberSwapCommand::LookupMemberSwapCommand;
    QString label() const override;
};

// The project's whole list of entity templates; constructed as (Project &, new list).
class SetEntityTemplatesCommand final
    : public MemberSwapCommand<Project, QList<EntityTemplate>, &Project::entityTemplates,
                               &Project::setEntityTemplates>
{
public:
    using MemberSwapCommand::MemberSwapCommand;
    QString label() const override;
};

} // namespace fb::core
