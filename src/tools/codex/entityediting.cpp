#include "core/commands/categorycommands.h"
#include "core/commands/command.h"
#include "core/commands/entitycommands.h"
#include "core/commands/objectcommands.h"
#include "core/contentobjects.h"
#include "core/ids.h"
#include "core/project.h"
#include "storage/workspace.h"
#include "tools/codex/categorylookup.h"
#include "tools/codex/entityhandlers.h"
#include "tools/codex/entitysupport.h"
#include "tools/codex/fieldvalues.h"
#include "tools/common/change.h"
#include "tools/common/storydates.h"
#include "tools/common/toolarguments.h"
#include "tools/common/toolcontext.h"

#include <QJsonObject>
#include <QMap>

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

using SchemaField = core::CategoryTree::SchemaField;

// Everything an update asks for, read and checked before any command is built: a refusal
// anywhere leaves the whole request unapplied.
struct EntityUpdate
{
    std::optional<QString> newName;
    // The category the entity ends up in: an existing one, or one to create by name.
    std::optional<QUuid> categoryId;
    QString categoryName;
    bool createsCategory = false;
    std::optional<QStringList> aliases;
    std::optional<QStringList> tags;
    std::optional<std::optional<qint64>> born;
    std::optional<std::optional<qint64>> died;
    std::optional<QList<core::TimedValue>> timedValues;
    // Field and reference values by key, the field definitions they need first, and which keys
    // came from "references" (to count them apart).
    QMap<QString, QString> values;
    QMap<QString, core::FieldDefinition> newFields;
    QStringList referenceKeys;
};

const QStringList &updateKeys()
{
    static const QStringList keys{u"new_name"_s, u"category"_s,   u"fields"_s,
                                  u"aliases"_s,  u"tags"_s,       u"born"_s,
                                  u"died"_s,     u"references"_s, u"timed_values"_s};
    return keys;
}

// A date argument: an empty text clears the date.
Result<std::optional<qint64>> storyDate(const core::Calendar &calendar, const QString &text)
{
    if (text.isEmpty())
        return std::optional<qint64>();
    const Result<qint64> instant = parseStoryDate(calendar, text);
    if (!instant)
        return makeError(instant.error());
    return std::optional<qint64>(*instant);
}

class UpdateReader
{
public:
    UpdateReader(ToolContext &context, const core::Entity &entity, const ToolArguments &arguments)
        : m_context(context)
        , m_project(context.workspace().project())
        , m_entity(entity)
        , m_arguments(arguments)
    {}

    Result<EntityUpdate> read()
    {
        for (const auto step :
             {&UpdateReader::readName, &UpdateReader::readCategory, &UpdateReader::readSets,
              &UpdateReader::readLifespan, &UpdateReader::readFields, &UpdateReader::readReferences,
              &UpdateReader::readTimedValues}) {
            if (const Result<void> done = (this->*step)(); !done)
                return makeError(done.error());
        }
        return m_update;
    }

private:
    bool has(const QString &key) const { return m_arguments.has(key); }

    Result<void> readName()
    {
        if (!has(u"new_name"_s))
            return {};
        const QString name = m_arguments.trimmed(u"new_name"_s);
        if (name.isEmpty())
            return makeError(u"\"new_name\" must be a non-empty name."_s);
        if (const Result<void> line = checkSingleLine(u"new_name"_s, name); !line)
            return line;
        if (entityNamed(m_project, name, m_entity.id()))
            return makeError(u"An entity named '%1' already exists."_s.arg(name));
        m_update.newName = name;
        return {};
    }

    Result<void> readCategory()
    {
        if (!has(u"category"_s))
            return {};
        const QString name = m_arguments.trimmed(u"category"_s);
        if (name.isEmpty())
            return makeError(u"\"category\" must be a non-empty category name."_s);
        // A category not there yet is created with this name.
        if (const Result<void> line = checkSingleLine(u"category"_s, name); !line)
            return line;
        const QUuid id = findCategory(m_project.categories(), name);
        const core::Category *category = m_project.categories().category(id);
        m_update.categoryId = id;
        m_update.categoryName = category ? category->name() : name;
        m_update.createsCategory = !category;
        return {};
    }

    Result<void> readSets()
    {
        if (has(u"aliases"_s)) {
            const Result<QStringList> aliases = aliasesArgument(m_arguments);
            if (!aliases)
                return makeError(aliases.error());
            m_update.aliases = *aliases;
        }
        if (has(u"tags"_s)) {
            const Result<QStringList> tags = tagsArgument(m_arguments);
            if (!tags)
                return makeError(tags.error());
            m_update.tags = *tags;
        }
        return {};
    }

    Result<void> readLifespan()
    {
        for (const auto &[key, slot] :
             {std::pair{u"born"_s, &m_update.born}, std::pair{u"died"_s, &m_update.died}}) {
            if (!has(key))
                continue;
            const Result<std::optional<qint64>> date = storyDate(m_project.calendar(),
                                                                 m_arguments.trimmed(key));
            if (!date)
                return makeError(date.error());
            *slot = *date;
        }
        return {};
    }

    // The schema of the category the entity will be in once the update is applied; a
    // category still to be created holds only its Summary field.
    QList<SchemaField> targetSchema() const
    {
        if (m_update.createsCategory)
            return newCategorySchema();
        return m_project.categories().effectiveSchema(
            m_update.categoryId.value_or(m_entity.categoryId()));
    }

    bool hasTargetCategory() const
    {
        return m_update.createsCategory
               || !m_update.categoryId.value_or(m_entity.categoryId()).isNull();
    }

    // The key a value is stored under: the existing field's, or that of a new field of the
    // given type defined on the target category.
    Result<QString> keyFor(const QString &argument, const QString &name, core::FieldType type)
    {
        const QString key = fieldKeyForLabel(name);
        if (m_update.newFields.contains(key))
            return key;
        if (!hasTargetCategory()) {
            return makeError(u"'%1' has no category to define the field '%2' on; pass "
                             "\"category\" to file it first."_s.arg(m_entity.name(), name));
        }
        // The name becomes the label of the new field.
        if (const Result<void> line = checkSingleLine(argument, name); !line)
            return makeError(line.error());
        core::FieldDefinition definition;
        definition.key = key;
        definition.label = name;
        definition.type = type;
        m_update.newFields.insert(key, definition);
        return key;
    }

    Result<void> readFields()
    {
        if (!has(u"fields"_s))
            return {};
        const QJsonObject fields = m_arguments.object(u"fields"_s);
        const QList<SchemaField> schema = targetSchema();
        for (auto it = fields.begin(); it != fields.end(); ++it) {
            const QString name = it.key().trimmed();
            if (name.isEmpty())
                continue;
            if (isBuiltInProperty(name))
                return makeError(builtInPropertyMessage(name));
            core::FieldDefinition definition;
            if (const std::optional<SchemaField> field = findSchemaField(schema, name)) {
                if (field->definition.type == core::FieldType::Reference) {
                    return makeError(u"Field '%1' exists with a non-text type; use "
                                     "\"references\" for a Reference field."_s.arg(name));
                }
                definition = field->definition;
            } else {
                const Result<QString> added = keyFor(u"fields"_s, name, core::FieldType::Text);
                if (!added)
                    return makeError(added.error());
                definition = m_update.newFields.value(*added);
            }
            const Result<QString> value = fieldValueText(definition, name, it.value(),
                                                         m_project.calendar());
            if (!value)
                return makeError(value.error());
            m_update.values.insert(definition.key, *value);
        }
        return {};
    }

    Result<void> readReferences()
    {
        if (!has(u"references"_s))
            return {};
        const QJsonObject references = m_arguments.object(u"references"_s);
        const QList<SchemaField> schema = targetSchema();
        for (auto it = references.begin(); it != references.end(); ++it) {
            const QString name = it.key().trimmed();
            if (name.isEmpty())
                continue;
            const std::optional<SchemaField> field = findSchemaField(schema, name);
            if (field && field->definition.type != core::FieldType::Reference)
                return makeError(u"Field '%1' exists but is not a Reference field."_s.arg(name));
            const QString targetName = argumentText(it.value());
            if (targetName.isEmpty())
                return makeError(u"The reference '%1' needs a target entity name."_s.arg(name));
            ObjectQuery query;
            query.name = targetName;
            query.entitiesOnly = true;
            const Result<LocatedObject> target = findObject(m_context, query);
            if (!target)
                return makeError(target.error());
            QString key;
            if (field) {
                key = field->definition.key;
            } else {
                const Result<QString> added = keyFor(u"references"_s, name,
                                                     core::FieldType::Reference);
                if (!added)
                    return makeError(added.error());
                key = *added;
            }
            m_update.values.insert(key, core::idText(target->object->id()));
            if (!m_update.referenceKeys.contains(key))
                m_update.referenceKeys.append(key);
        }
        return {};
    }

    Result<void> readTimedValues()
    {
        if (!has(u"timed_values"_s))
            return {};
        const QList<SchemaField> schema = targetSchema();
        QList<core::TimedValue> timedValues;
        for (const QJsonObject &entry : m_arguments.records(u"timed_values"_s)) {
            const QString field = entry.value(u"field"_s).toString().trimmed();
            const QString when = entry.value(u"when"_s).toString().trimmed();
            if (field.isEmpty() || when.isEmpty())
                return makeError(u"Every timed value needs a non-empty \"field\" and \"when\"."_s);
            const Result<qint64> instant = parseStoryDate(m_project.calendar(), when);
            if (!instant)
                return makeError(instant.error());
            // A field the schema does not define is kept under the key its label would get.
            const std::optional<SchemaField> known = findSchemaField(schema, field);
            timedValues.append({known ? known->definition.key : fieldKeyForLabel(field), *instant,
                                entry.value(u"value"_s).toString().trimmed()});
        }
        m_update.timedValues = timedValues;
        return {};
    }

    ToolContext &m_context;
    core::Project &m_project;
    const core::Entity &m_entity;
    const ToolArguments &m_arguments;
    EntityUpdate m_update;
};

// The commands of a checked update, with the aspects that change, in the order the result
// names them; aspects that already hold the requested state get no command.
QStringList buildUpdate(core::Project &project, const core::Entity &entity,
                        const EntityUpdate &update, core::CompositeCommand &change)
{
    const QUuid id = entity.id();
    QUuid categoryId = entity.categoryId();
    QString movedTo;
    if (update.categoryId) {
        const QUuid target = update.createsCategory
                                 ? ensureCategory(project, change, update.categoryName, QUuid())
                                 : *update.categoryId;
        if (target != entity.categoryId()) {
            categoryId = target;
            movedTo = update.categoryName;
        }
    }
    for (const core::FieldDefinition &definition : update.newFields)
        change.append(std::make_unique<core::AddFieldCommand>(project, categoryId, definition));

    int fields = 0;
    int references = 0;
    for (auto it = update.values.cbegin(); it != update.values.cend(); ++it) {
        const bool defined = update.newFields.contains(it.key());
        if (!defined && entity.value(it.key()) == it.value())
            continue;
        if (entity.value(it.key()) != it.value()) {
            change.append(
                std::make_unique<core::SetFieldValueCommand>(project, id, it.key(), it.value()));
        }
        if (update.referenceKeys.contains(it.key()))
            ++references;
        else
            ++fields;
    }

    QStringList phrases;
    if (fields > 0)
        phrases.append(u"%1 field(s)"_s.arg(QString::number(fields)));
    if (references > 0)
        phrases.append(u"%1 reference(s)"_s.arg(QString::number(references)));
    if (update.aliases && *update.aliases != entity.aliases()) {
        change.append(std::make_unique<core::SetEntityAliasesCommand>(project, id, *update.aliases));
        phrases.append(u"%1 alias(es)"_s.arg(QString::number(update.aliases->size())));
    }
    if (update.tags && *update.tags != entity.tags()) {
        change.append(std::make_unique<core::SetObjectTagsCommand>(project, id, *update.tags));
        phrases.append(u"%1 tag(s)"_s.arg(QString::number(update.tags->size())));
    }
    const core::EntityLifespan lifespan{update.born.value_or(entity.birthInstant()),
                                        update.died.value_or(entity.deathInstant())};
    if (lifespan != core::entityLifespan(entity)) {
        change.append(std::make_unique<core::SetEntityLifespanCommand>(project, id, lifespan));
        phrases.append(u"lifespan"_s);
    }
    if (update.timedValues && *update.timedValues != entity.timedValues()) {
        change.append(
            std::make_unique<core::SetEntityTimedValuesCommand>(project, id, *update.timedValues));
        phrases.append(u"%1 timed value(s)"_s.arg(QString::number(update.timedValues->size())));
    }
    if (update.newName && *update.newName != entity.name()) {
        change.append(std::make_unique<core::SetEntityNameCommand>(project, id, *update.newName));
        phrases.append(u"renamed to '%1'"_s.arg(*update.newName));
    }
    if (!movedTo.isEmpty()) {
        change.append(std::make_unique<core::SetEntityCategoryCommand>(project, id, categoryId));
        phrases.append(u"moved to '%1'"_s.arg(movedTo));
    }
    return phrases;
}

} // namespace

McpToolResult updateEntity(ToolContext &context, const ToolArguments &arguments)
{
    ObjectQuery query = objectQuery(arguments, u"entity"_s);
    if (query.name.isEmpty() && query.id.isEmpty())
        return McpToolResult::failure(u"update_entity needs \"entity\" (or \"id\")."_s);
    query.entitiesOnly = true;
    const Result<LocatedObject> located = findObjectToChange(context, query);
    if (!located)
        return McpToolResult::failure(located.error());
    const auto *entity = core::objectCast<core::Entity>(located->object);
    if (!entity) {
        return McpToolResult::failure(
            u"'%1' is not an entity."_s.arg(core::objectTitle(*located->object)));
    }
    const QStringList &keys = updateKeys();
    if (std::none_of(keys.begin(), keys.end(), [&](const QString &k) { return arguments.has(k); })) {
        return McpToolResult::failure(
            u"update_entity received nothing to change; pass \"fields\", \"aliases\", \"born\", "
            "\"died\", \"tags\", or \"references\"."_s);
    }
    const Result<EntityUpdate> update = UpdateReader(context, *entity, arguments).read();
    if (!update)
        return McpToolResult::failure(update.error());

    const QString name = entity->name();
    auto change = std::make_unique<core::CompositeCommand>(u"MCP: update entity"_s);
    const QStringList phrases = buildUpdate(context.workspace().project(), *entity, *update,
                                            *change);
    if (change->isEmpty())
        return McpToolResult::success(u"'%1' was already up to date; nothing changed."_s.arg(name));
    return applyChange(context, std::move(change),
                       u"Updated '%1': %2."_s.arg(name, phrases.join(u", "_s)));
}

} // namespace fb::app
