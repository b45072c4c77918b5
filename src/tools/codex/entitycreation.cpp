#include "tools/codex/entityhandlers.h"

#include "core/commands/categorycommands.h"
#include "core/commands/command.h"
#include "core/commands/entitycommands.h"
#include "core/commands/structuralcommands.h"
#include "core/entity.h"
#include "core/ids.h"
#include "core/project.h"
#include "storage/applylogsave.h"
#include "storage/workspace.h"
#include "tools/codex/categorylookup.h"
#include "tools/codex/entitysupport.h"
#include "tools/common/arguments.h"

#include <QJsonObject>
#include <QMap>

using namespace Qt::StringLiterals;

namespace fb::app {

McpToolResult createEntity(Workspace &workspace, McpChangeLog &log, const QJsonObject &arguments)
{
    const QString name = trimmedArgument(arguments, u"name"_s);
    const QString categoryName = trimmedArgument(arguments, u"category"_s);
    if (name.isEmpty() || categoryName.isEmpty())
        return McpToolResult::failure(u"create_entity needs \"name\" and \"category\"."_s);
    core::Project &project = workspace.project();
    if (entityNamed(project, name))
        return McpToolResult::failure(u"An entity named '%1' already exists."_s.arg(name));
    const QJsonValue fieldsValue = arguments.value(u"fields"_s);
    if (!fieldsValue.isUndefined() && !fieldsValue.isNull() && !fieldsValue.isObject()) {
        return McpToolResult::failure(u"\"fields\" must be an object of values by field label."_s);
    }

    const core::CategoryTree &tree = project.categories();
    const QUuid existingCategory = findCategory(tree, categoryName);
    // A category that does not exist yet will hold only its Summary field.
    const QList<core::CategoryTree::SchemaField> schema
        = existingCategory.isNull() ? newCategorySchema() : tree.effectiveSchema(existingCategory);

    // Values by field key, and the text fields to define first.
    QMap<QString, QString> values;
    if (const QString summary = trimmedArgument(arguments, u"summary"_s); !summary.isEmpty())
        values.insert(u"summary"_s, summary);
    QMap<QString, core::FieldDefinition> newFields;
    const QJsonObject fields = fieldsValue.toObject();
    for (auto it = fields.begin(); it != fields.end(); ++it) {
        const QString fieldName = it.key().trimmed();
        if (fieldName.isEmpty())
            continue;
        // A built-in property is no custom field here either; the refusal points to
        // update_entity, which sets it once the entity exists.
        if (isBuiltInProperty(fieldName))
            return McpToolResult::failure(builtInPropertyMessage(fieldName));
        QString value = argumentText(it.value());
        const std::optional<core::CategoryTree::SchemaField> field
            = findSchemaField(schema, fieldName);
        QString key;
        if (field) {
            key = field->definition.key;
            // A reference field stores the target's id; the agent names the target, and a name
            // that resolves to nothing is refused rather than stored as a broken link.
            if (field->definition.type == core::FieldType::Reference && !value.isEmpty()) {
                ObjectQuery query;
                query.name = value;
                query.entitiesOnly = true;
                const Result<LocatedObject> target = findObject(workspace, query);
                if (!target)
                    return McpToolResult::failure(target.error());
                value = core::idText(target->object->id());
            }
        } else {
            key = fieldKeyForLabel(fieldName);
            core::FieldDefinition definition;
            definition.key = key;
            definition.label = fieldName;
            newFields.insert(key, definition);
        }
        if (value.isEmpty())
            values.remove(key);
        else
            values.insert(key, value);
    }

    auto change = std::make_unique<core::CompositeCommand>(u"MCP: create entity"_s);
    const QUuid categoryId = ensureCategory(project, *change, categoryName, QUuid());
    for (const core::FieldDefinition &definition : newFields)
        change->append(std::make_unique<core::AddFieldCommand>(project, categoryId, definition));
    auto entity = std::make_unique<core::Entity>(name);
    entity->setCategoryId(categoryId);
    const QUuid entityId = entity->id();
    change->append(std::make_unique<core::AddObjectCommand>(project, std::move(entity)));
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        change->append(
            std::make_unique<core::SetFieldValueCommand>(project, entityId, it.key(), it.value()));
    }
    const core::Category *category = tree.category(existingCategory);
    return applyChange(
        workspace, log, std::move(change),
        u"Created entity '%1' (%2) with %3 field(s)."_s.arg(
            name, category ? category->name() : categoryName, QString::number(values.size())));
}

} // namespace fb::app
