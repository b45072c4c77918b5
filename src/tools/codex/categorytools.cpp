#include "core/commands/categorycommands.h"
#include "core/commands/command.h"
#include "core/entity.h"
#include "core/ids.h"
#include "core/project.h"
#include "storage/workspace.h"
#include "tools/codex/categorylookup.h"
#include "tools/codex/codexfamily.h"
#include "tools/common/change.h"
#include "tools/common/toolcontext.h"
#include "tools/common/visibility.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

using SchemaField = core::CategoryTree::SchemaField;

const QString categoryKey = u"category"_s;
const QString nameKey = u"name"_s;
const QString newNameKey = u"new_name"_s;
const QString parentKey = u"parent"_s;
const QString deleteKey = u"delete"_s;
const QString labelKey = u"label"_s;
const QString typeKey = u"type"_s;
const QString optionsKey = u"options"_s;
const QString requiredKey = u"required"_s;
const QString descriptionKey = u"description"_s;
const QString fieldKey = u"field"_s;
const QString positionKey = u"position"_s;
// Said when "position" is missing or not a whole number.
const QString missingPosition = u"move_field needs \"position\" (a 0-based integer index)."_s;

QString noCategoryMessage(const QString &name)
{
    return u"No category named '%1'."_s.arg(name);
}

// The fields a category defines itself; a field of the same name may also be inherited, and
// the own one is the one the field tools act on.
QList<SchemaField> ownFields(const QList<SchemaField> &schema)
{
    QList<SchemaField> own;
    for (const SchemaField &field : schema) {
        if (!field.inherited)
            own.append(field);
    }
    return own;
}

// Entities the agent may see; withheld ones are left out of counts and listings alike.
std::vector<const core::Entity *> visibleEntitiesIn(ToolContext &context, const QUuid &categoryId)
{
    const Visibility &visibility = context.visibility();
    std::vector<const core::Entity *> entities;
    for (const core::Entity *entity : context.workspace().project().objectsOfType<core::Entity>()) {
        if (entity->categoryId() == categoryId && visibility.isVisible(*entity))
            entities.push_back(entity);
    }
    return entities;
}

// Checks that every name a call would store is one line; the first that is not is refused.
Result<void> checkNames(std::initializer_list<std::pair<QString, QString>> names)
{
    for (const auto &[argument, value] : names) {
        if (const Result<void> line = checkSingleLine(argument, value); !line)
            return line;
    }
    return {};
}

McpToolResult getCategory(ToolContext &context, const ToolArguments &arguments)
{
    const QString name = arguments.trimmed(categoryKey);
    if (name.isEmpty())
        return McpToolResult::failure(u"get_category needs \"category\" (its name)."_s);
    const core::CategoryTree &tree = context.workspace().project().categories();
    const core::Category *category = tree.category(findCategory(tree, name));
    if (!category)
        return McpToolResult::failure(u"No category named '%1' exists."_s.arg(name));

    const core::Category *parent = tree.category(category->parentId());
    QStringList subcategories;
    for (const core::Category *child : tree.children(category->id()))
        subcategories.append(child->name());
    const QList<SchemaField> schema = tree.effectiveSchema(category->id());

    QStringList lines{
        u"## Category: %1"_s.arg(category->name()),
        u"- Parent: %1"_s.arg(parent ? parent->name() : u"(none, top level)"_s),
        u"- Subcategories: %1"_s.arg(subcategories.isEmpty() ? u"(none)"_s
                                                             : subcategories.join(u", "_s)),
        u"- Entities: %1"_s.arg(QString::number(visibleEntitiesIn(context, category->id()).size())),
        u"- Fields (%1):"_s.arg(QString::number(schema.size())),
    };
    for (const SchemaField &field : schema)
        lines.append(schemaFieldLine(field));
    return McpToolResult::success(lines.join(u'\n'));
}

McpToolResult listCategory(ToolContext &context, const ToolArguments &arguments)
{
    const QString name = arguments.trimmed(categoryKey);
    if (name.isEmpty())
        return McpToolResult::failure(u"list_category needs \"category\"."_s);
    const std::vector<const core::Category *> matches
        = findCategories(context.workspace().project().categories(), name);
    if (matches.size() > 1) {
        QStringList ids;
        for (const core::Category *category : matches)
            ids.append(core::idText(category->id()));
        return McpToolResult::failure(
            u"The name '%1' matches %2 categories (ids: %3)."_s.arg(name,
                                                                    QString::number(matches.size()),
                                                                    ids.join(u", "_s)));
    }
    if (matches.empty())
        return McpToolResult::failure(u"No category named '%1' exists."_s.arg(name));

    const core::Category &category = *matches.front();
    std::vector<const core::Entity *> entities = visibleEntitiesIn(context, category.id());
    if (entities.empty())
        return McpToolResult::success(u"No entities in '%1' yet."_s.arg(category.name()));
    // Alphabetical, as a codex is read; the id keeps equal names in a stable order.
    std::sort(entities.begin(), entities.end(), [](const core::Entity *a, const core::Entity *b) {
        const int byName = QString::compare(a->name(), b->name(), Qt::CaseInsensitive);
        return byName != 0 ? byName < 0 : core::compareIds(a->id(), b->id()) < 0;
    });
    QStringList lines{
        u"Entities in '%1' (%2):"_s.arg(category.name(), QString::number(entities.size()))};
    for (const core::Entity *entity : entities) {
        // A summary written over several lines is folded onto one.
        const QString summary = entity->value(u"summary"_s).simplified();
        lines.append(summary.isEmpty() ? u"- %1"_s.arg(entity->name())
                                       : u"- %1 -- %2"_s.arg(entity->name(), summary));
    }
    return McpToolResult::success(lines.join(u'\n'));
}

McpToolResult createCategory(ToolContext &context, const ToolArguments &arguments)
{
    const QString name = arguments.trimmed(nameKey);
    const QString parent = arguments.trimmed(parentKey);
    if (name.isEmpty())
        return McpToolResult::failure(u"create_category needs a non-empty \"name\"."_s);
    if (const Result<void> names = checkNames({{nameKey, name}, {parentKey, parent}}); !names)
        return McpToolResult::failure(names.error());

    core::Project &project = context.workspace().project();
    if (const core::Category *existing = project.categories().category(
            findCategory(project.categories(), name))) {
        return McpToolResult::success(u"Category '%1' already exists."_s.arg(existing->name()));
    }

    auto change = std::make_unique<core::CompositeCommand>(u"MCP: create category"_s);
    if (parent.isEmpty()) {
        ensureCategory(project, *change, name, QUuid());
        return applyChange(context, std::move(change), u"Created category '%1'."_s.arg(name));
    }
    const QUuid parentId = ensureCategory(project, *change, parent, QUuid());
    if (project.categories().contains(parentId)) {
        ensureCategory(project, *change, name, parentId);
    } else {
        // A parent created by this same step exists only once the step runs, so the new
        // category is made at the top level and moved under it within the step.
        const QUuid id = ensureCategory(project, *change, name, QUuid());
        change->append(std::make_unique<core::ReparentCategoryCommand>(project, id, parentId));
    }
    return applyChange(context, std::move(change),
                       u"Created category '%1' under '%2'."_s.arg(name, parent));
}

McpToolResult updateCategory(ToolContext &context, const ToolArguments &arguments)
{
    const QString name = arguments.trimmed(categoryKey);
    const QString newName = arguments.trimmed(newNameKey);
    const bool moves = arguments.has(parentKey);
    const QString parentName = arguments.trimmed(parentKey);
    if (name.isEmpty()) {
        return McpToolResult::failure(
            u"update_category needs \"category\" (the category to change)."_s);
    }
    core::Project &project = context.workspace().project();
    const core::CategoryTree &tree = project.categories();
    const core::Category *category = tree.category(findCategory(tree, name));
    if (!category)
        return McpToolResult::failure(noCategoryMessage(name));
    const QUuid id = category->id();
    const QString oldName = category->name();

    // Deletion ends the tool: a new name or parent given beside it is not looked at.
    if (arguments.boolean(deleteKey)) {
        auto change = std::make_unique<core::CompositeCommand>(u"MCP: update category"_s);
        change->append(std::make_unique<core::RemoveCategoryCommand>(project, id));
        return applyChange(context, std::move(change),
                           u"Deleted category '%1'; its subcategories and entities moved up to its "
                           "parent."_s.arg(oldName));
    }

    if (newName.isEmpty() && !moves) {
        return McpToolResult::failure(
            u"update_category needs one of: \"new_name\", \"parent\", or \"delete\": true."_s);
    }
    // The whole request is checked before anything is built: a refused move must not let a
    // valid rename through.
    if (const Result<void> names = checkNames({{newNameKey, newName}, {parentKey, parentName}});
        !names) {
        return McpToolResult::failure(names.error());
    }
    const QUuid existingParent = parentName.isEmpty() ? QUuid() : findCategory(tree, parentName);
    if (!existingParent.isNull() && tree.isInSubtree(existingParent, id)) {
        return McpToolResult::failure(
            u"Can't move '%1' under '%2': that would nest a category inside one of its own "
            "subcategories."_s.arg(oldName, tree.category(existingParent)->name()));
    }

    auto change = std::make_unique<core::CompositeCommand>(u"MCP: update category"_s);
    QStringList phrases;
    if (!newName.isEmpty() && newName != oldName) {
        change->append(std::make_unique<core::RenameCategoryCommand>(project, id, newName));
        phrases.append(u"renamed to '%1'"_s.arg(newName));
    }
    if (moves) {
        const QUuid parentId = parentName.isEmpty()
                                   ? QUuid()
                                   : ensureCategory(project, *change, parentName, QUuid());
        if (parentId != category->parentId()) {
            change->append(std::make_unique<core::ReparentCategoryCommand>(project, id, parentId));
            const core::Category *known = tree.category(parentId);
            phrases.append(parentId.isNull()
                               ? u"made a top-level category"_s
                               : u"moved under '%1'"_s.arg(known ? known->name() : parentName));
        }
    }
    if (change->isEmpty()) {
        return McpToolResult::success(
            u"Category '%1' already has that name and parent; nothing changed."_s.arg(oldName));
    }
    return applyChange(context, std::move(change),
                       u"Updated category '%1': %2."_s.arg(oldName, phrases.join(u", "_s)));
}

McpToolResult addField(ToolContext &context, const ToolArguments &arguments)
{
    const QString name = arguments.trimmed(categoryKey);
    const QString label = arguments.trimmed(labelKey);
    const QString typeName = arguments.trimmed(typeKey);
    QStringList options;
    for (const QString &option : arguments.textList(optionsKey)) {
        if (const QString text = option.trimmed(); !text.isEmpty())
            options.append(text);
    }
    if (name.isEmpty() || label.isEmpty())
        return McpToolResult::failure(u"add_field needs \"category\" and a non-empty \"label\"."_s);
    if (const Result<void> line = checkSingleLine(labelKey, label); !line)
        return McpToolResult::failure(line.error());

    core::Project &project = context.workspace().project();
    const core::Category *category = project.categories().category(
        findCategory(project.categories(), name));
    if (!category)
        return McpToolResult::failure(noCategoryMessage(name));

    core::FieldType type = core::FieldType::Text;
    if (!typeName.isEmpty()) {
        const std::optional<core::FieldType> parsed = core::enumFromName<core::FieldType>(typeName);
        if (!parsed) {
            return McpToolResult::failure(
                u"Unknown field type '%1'; use one of: %2."_s
                    .arg(typeName, core::enumNames<core::FieldType>().join(u", "_s)));
        }
        type = *parsed;
    }
    if (type == core::FieldType::Choice && options.isEmpty())
        return McpToolResult::failure(u"A choice field needs a non-empty \"options\" array."_s);
    // The options are listed on the field's one schema line, and a value is matched against
    // them whole.
    if (type == core::FieldType::Choice) {
        for (const QString &option : options) {
            if (const Result<void> line = checkSingleLine(optionsKey, option); !line)
                return McpToolResult::failure(line.error());
        }
    }
    const QString key = fieldKeyForLabel(label);
    if (key.isEmpty())
        return McpToolResult::failure(u"The label '%1' reduces to an empty key."_s.arg(label));

    core::FieldDefinition field;
    field.key = key;
    field.label = label;
    field.type = type;
    field.required = arguments.boolean(requiredKey);
    field.description = arguments.trimmed(descriptionKey);
    if (type == core::FieldType::Choice)
        field.options = options;

    const bool replaces = category->fieldIndex(key) >= 0;
    auto change = std::make_unique<core::CompositeCommand>(u"MCP: add field"_s);
    change->append(std::make_unique<core::AddFieldCommand>(project, category->id(), field));
    return applyChange(context, std::move(change),
                       u"%1 the %2 field '%3' on category '%4'."_s.arg(replaces ? u"Updated"_s
                                                                                : u"Added"_s,
                                                                       core::enumName(type), label,
                                                                       name));
}

McpToolResult removeField(ToolContext &context, const ToolArguments &arguments)
{
    const QString name = arguments.trimmed(categoryKey);
    const QString fieldName = arguments.trimmed(fieldKey);
    if (name.isEmpty() || fieldName.isEmpty())
        return McpToolResult::failure(u"remove_field needs \"category\" and \"field\"."_s);
    core::Project &project = context.workspace().project();
    const core::CategoryTree &tree = project.categories();
    const core::Category *category = tree.category(findCategory(tree, name));
    if (!category)
        return McpToolResult::failure(noCategoryMessage(name));
    const QList<SchemaField> schema = tree.effectiveSchema(category->id());
    std::optional<SchemaField> field = findSchemaField(ownFields(schema), fieldName);
    if (!field)
        field = findSchemaField(schema, fieldName);
    if (!field)
        return McpToolResult::failure(u"Category '%1' has no field '%2'."_s.arg(name, fieldName));
    if (field->inherited) {
        return McpToolResult::failure(
            u"'%1' is inherited from a parent category, not defined on '%2'; remove it from the "
            "parent that defines it."_s.arg(field->definition.label, name));
    }

    auto change = std::make_unique<core::CompositeCommand>(u"MCP: remove field"_s);
    change->append(
        std::make_unique<core::RemoveFieldCommand>(project, category->id(), field->definition.key));
    return applyChange(context, std::move(change),
                       u"Removed the field '%1' from category '%2'. Entity values under it are "
                       "kept, so undo restores the field with its data."_s
                           .arg(field->definition.label, name));
}

McpToolResult moveField(ToolContext &context, const ToolArguments &arguments)
{
    const QString name = arguments.trimmed(categoryKey);
    const QString fieldName = arguments.trimmed(fieldKey);
    const std::optional<qint64> requested = arguments.integer(positionKey);
    if (name.isEmpty() || fieldName.isEmpty())
        return McpToolResult::failure(u"move_field needs \"category\" and \"field\"."_s);
    if (!requested) {
        return McpToolResult::failure(missingPosition);
    }
    if (*requested < 0)
        return McpToolResult::failure(u"\"position\" must be a non-negative index."_s);
    core::Project &project = context.workspace().project();
    const core::CategoryTree &tree = project.categories();
    const core::Category *category = tree.category(findCategory(tree, name));
    if (!category)
        return McpToolResult::failure(noCategoryMessage(name));
    const std::optional<SchemaField> field = findSchemaField(ownFields(tree.effectiveSchema(
                                                                 category->id())),
                                                             fieldName);
    if (!field) {
        return McpToolResult::failure(
            u"Category '%1' has no own field '%2' to reorder."_s.arg(name, fieldName));
    }

    // Anything past the end is clamped, so a huge number simply means "last".
    const qint64 last = category->fields().size() - 1;
    const int position = int(std::min(*requested, last));
    const QString text = u"Moved the field '%1' to position %2 on category '%3'."_s
                             .arg(field->definition.label, QString::number(position), name);
    if (category->fieldIndex(field->definition.key) == position)
        return McpToolResult::success(text);
    auto change = std::make_unique<core::CompositeCommand>(u"MCP: move field"_s);
    change->append(std::make_unique<core::MoveFieldCommand>(project, category->id(),
                                                            field->definition.key, position));
    return applyChange(context, std::move(change), text);
}

} // namespace

std::vector<ToolDefinition> codexCategoryTools()
{
    const QString categoryName = u"The category's name (case-insensitive)."_s;
    const QString definingCategory = u"The category that defines the field."_s;
    const QString fieldName = u"The field's label or key."_s;
    return {
        {u"get_category"_s,
         u"Shows a category's parent, subcategories, entity count, and its full field schema (each "
         "field's type, options, whether required, and own vs inherited) -- the read side of "
         "add_field / remove_field / move_field."_s,
         {requiredText(categoryKey, categoryName)},
         getCategory},
        {u"list_category"_s,
         u"Lists the entities of a named codex category with one-line summaries."_s,
         {requiredText(categoryKey, categoryName)},
         listCategory},
        {u"create_category"_s,
         u"Creates a codex category (with a standard Summary field). Pass \"parent\" to nest it "
         "under another category (the parent is created when absent). A category that already "
         "exists is a valid no-op."_s,
         {requiredText(nameKey, u"The new category's name."_s),
          optionalText(parentKey,
                       u"The category to nest it under; created at the top level when absent."_s)},
         createCategory},
        {u"update_category"_s,
         u"Renames, moves, or deletes a codex category."_s,
         {requiredText(categoryKey, u"The category to change."_s),
          optionalText(newNameKey, u"Rename the category to this name."_s),
          optionalText(parentKey,
                       u"Move it under this category (created when absent); an empty string makes "
                       "it a top-level category."_s),
          optionalBool(deleteKey,
                       u"true to delete the category; its subcategories and entities move up to "
                       "its parent."_s)},
         updateCategory},
        {u"add_field"_s,
         u"Defines a typed field on a codex category's schema (or replaces the same-named field "
         "already on it)."_s,
         {requiredText(categoryKey, u"The category whose schema gets the field."_s),
          requiredText(labelKey, u"The field's display label, e.g. \"Eye Color\"."_s),
          optionalChoice(typeKey, u"text | number | boolean | date | reference | choice | url."_s,
                         core::enumNames<core::FieldType>()),
          optionalTextList(optionsKey, u"The choices of a choice field."_s),
          optionalBool(requiredKey,
                       u"Whether every entity should fill the field (default false)."_s),
          optionalText(descriptionKey, u"A short explanation shown with the field."_s)},
         addField},
        {u"remove_field"_s,
         u"Removes a field from a codex category's own schema."_s,
         {requiredText(categoryKey, definingCategory), requiredText(fieldKey, fieldName)},
         removeField},
        {u"move_field"_s,
         u"Reorders a field within a codex category's own schema, changing the order fields are "
         "shown."_s,
         {requiredText(categoryKey, definingCategory), requiredText(fieldKey, fieldName),
          withTypeRefusal(requiredInteger(positionKey, u"The 0-based index to move it to."_s),
                          missingPosition)},
         moveField},
    };
}

} // namespace fb::app
