#include "core/commands/categorycommands.h"
#include "core/commands/command.h"
#include "core/commands/entitycommands.h"
#include "core/commands/structuralcommands.h"
#include "core/entity.h"
#include "core/ids.h"
#include "core/project.h"
#include "storage/workspace.h"
#include "tools/codex/categorylookup.h"
#include "tools/codex/entityhandlers.h"
#include "tools/codex/entitysupport.h"
#include "tools/codex/fieldvalues.h"
#include "tools/common/change.h"
#include "tools/common/toolarguments.h"
#include "tools/common/toolcontext.h"

#include <QJsonObject>
#include <QMap>

#include <optional>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

using SchemaField = core::CategoryTree::SchemaField;

// The field values of a new entity by key, and the text fields to define for names the
// category's schema does not know yet.
struct NewEntityValues
{
    QMap<QString, QString> values;
    QMap<QString, core::FieldDefinition> newFields;
};

// Reads "summary" and "fields" against the schema the entity will have. A reference field
// takes its target's name, which must name one entity the agent may see; any other field takes
// a value of its type.
Result<NewEntityValues> readValues(ToolContext &context, const ToolArguments &arguments,
                                   const QList<SchemaField> &schema)
{
    NewEntityValues read;
    if (const QString summary = arguments.trimmed(u"summary"_s); !summary.isEmpty())
        read.values.insert(u"summary"_s, summary);
    const core::Calendar &calendar = context.workspace().project().calendar();
    const QJsonObject fields = arguments.object(u"fields"_s);
    for (auto it = fields.begin(); it != fields.end(); ++it) {
        const QString fieldName = it.key().trimmed();
        if (fieldName.isEmpty())
            continue;
        // A built-in property is no custom field here either; the refusal points to
        // update_entity, which sets it once the entity exists.
        if (isBuiltInProperty(fieldName))
            return makeError(builtInPropertyMessage(fieldName));
        const std::optional<SchemaField> field = findSchemaField(schema, fieldName);
        core::FieldDefinition definition;
        if (field) {
            definition = field->definition;
        } else {
            // The name becomes the label of a new text field.
            if (const Result<void> line = checkSingleLine(u"fields"_s, fieldName); !line)
                return makeError(line.error());
            definition.key = fieldKeyForLabel(fieldName);
            definition.label = fieldName;
            read.newFields.insert(definition.key, definition);
        }
        QString value;
        // A reference field stores the target's id; a name that resolves to nothing is
        // refused rather than stored as a broken link.
        if (definition.type == core::FieldType::Reference) {
            value = argumentText(it.value());
            if (!value.isEmpty()) {
                ObjectQuery query;
                query.name = value;
                query.entitiesOnly = true;
                const Result<LocatedObject> target = findObject(context, query);
                if (!target)
                    return makeError(target.error());
                value = core::idText(target->object->id());
            }
        } else {
            const Result<QString> typed = fieldValueText(definition, fieldName, it.value(),
                                                         calendar);
            if (!typed)
                return makeError(typed.error());
            value = *typed;
        }
        if (value.isEmpty())
            read.values.remove(definition.key);
        else
            read.values.insert(definition.key, value);
    }
    return read;
}

} // namespace

McpToolResult createEntity(ToolContext &context, const ToolArguments &arguments)
{
    const QString name = arguments.trimmed(u"name"_s);
    const QString categoryName = arguments.trimmed(u"category"_s);
    if (name.isEmpty() || categoryName.isEmpty())
        return McpToolResult::failure(u"create_entity needs \"name\" and \"category\"."_s);
    for (const auto &[argument, value] :
         {std::pair{u"name"_s, name}, std::pair{u"category"_s, categoryName}}) {
        if (const Result<void> line = checkSingleLine(argument, value); !line)
            return McpToolResult::failure(line.error());
    }
    const Result<QStringList> aliases = aliasesArgument(arguments);
    if (!aliases)
        return McpToolResult::failure(aliases.error());
    const Result<QStringList> tags = tagsArgument(arguments);
    if (!tags)
        return McpToolResult::failure(tags.error());

    core::Project &project = context.workspace().project();
    if (entityNamed(project, name))
        return McpToolResult::failure(u"An entity named '%1' already exists."_s.arg(name));
    const core::CategoryTree &tree = project.categories();
    const QUuid existingCategory = findCategory(tree, categoryName);
    // A category that does not exist yet will hold only its Summary field.
    const Result<NewEntityValues> read = readValues(context, arguments,
                                                    existingCategory.isNull()
                                                        ? newCategorySchema()
                                                        : tree.effectiveSchema(existingCategory));
    if (!read)
        return McpToolResult::failure(read.error());

    auto change = std::make_unique<core::CompositeCommand>(u"MCP: create entity"_s);
    const QUuid categoryId = ensureCategory(project, *change, categoryName, QUuid());
    for (const core::FieldDefinition &definition : read->newFields)
        change->append(std::make_unique<core::AddFieldCommand>(project, categoryId, definition));
    auto entity = std::make_unique<core::Entity>(name);
    entity->setCategoryId(categoryId);
    entity->setAliases(*aliases);
    entity->setTags(*tags);
    const QUuid entityId = entity->id();
    change->append(std::make_unique<core::AddObjectCommand>(project, std::move(entity)));
    for (auto it = read->values.cbegin(); it != read->values.cend(); ++it) {
        change->append(
            std::make_unique<core::SetFieldValueCommand>(project, entityId, it.key(), it.value()));
    }
    const core::Category *category = tree.category(existingCategory);
    return applyChange(context, std::move(change),
                       u"Created entity '%1' (%2) with %3 field(s)."_s
                           .arg(name, category ? category->name() : categoryName,
                                QString::number(read->values.size())));
}

} // namespace fb::app
