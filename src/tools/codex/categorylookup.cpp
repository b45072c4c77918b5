#include "tools/codex/categorylookup.h"

#include "core/commands/categorycommands.h"
#include "core/commands/command.h"
#include "core/project.h"

#include <memory>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

QString folded(const QString &name)
{
    return name.trimmed().toLower();
}

} // namespace

std::vector<const core::Category *> findCategories(const core::CategoryTree &tree,
                                                   const QString &name)
{
    const QString key = folded(name);
    std::vector<const core::Category *> found;
    for (const core::CategoryTree::TreeEntry &entry : tree.treeOrder()) {
        if (folded(entry.category->name()) == key)
            found.push_back(entry.category);
    }
    return found;
}

QUuid findCategory(const core::CategoryTree &tree, const QString &name)
{
    const QString key = folded(name);
    for (const core::CategoryTree::TreeEntry &entry : tree.treeOrder()) {
        if (folded(entry.category->name()) == key)
            return entry.category->id();
    }
    return {};
}

core::FieldDefinition standardSummaryField()
{
    core::FieldDefinition field;
    field.key = u"summary"_s;
    field.label = u"Summary"_s;
    field.type = core::FieldType::Text;
    return field;
}

QString fieldKeyForLabel(const QString &label)
{
    return folded(label);
}

QUuid ensureCategory(core::Project &project, core::CompositeCommand &change, const QString &name,
                     const QUuid &parentId)
{
    if (const QUuid existing = findCategory(project.categories(), name); !existing.isNull())
        return existing;
    const QUuid parent = !parentId.isNull() && project.categories().contains(parentId) ? parentId
                                                                                       : QUuid();
    auto category = std::make_unique<core::Category>(name.trimmed(), parent);
    const QUuid id = category->id();
    change.append(std::make_unique<core::AddCategoryCommand>(project, std::move(category)));
    change.append(std::make_unique<core::AddFieldCommand>(project, id, standardSummaryField()));
    return id;
}

QList<core::CategoryTree::SchemaField> newCategorySchema()
{
    return {{standardSummaryField(), QUuid(), false}};
}

std::optional<core::CategoryTree::SchemaField> findSchemaField(
    const QList<core::CategoryTree::SchemaField> &schema, const QString &name)
{
    const QString key = folded(name);
    for (const core::CategoryTree::SchemaField &field : schema) {
        if (folded(field.definition.key) == key || folded(field.definition.label) == key)
            return field;
    }
    return std::nullopt;
}

QString schemaFieldLine(const core::CategoryTree::SchemaField &field)
{
    const core::FieldDefinition &definition = field.definition;
    QString line = u"  - %1 [%2] (%3)"_s.arg(definition.label, core::enumName(definition.type),
                                             definition.key);
    if (definition.required)
        line += u", required"_s;
    if (definition.type == core::FieldType::Choice && !definition.options.isEmpty())
        line += u" -- options: %1"_s.arg(definition.options.join(u", "));
    if (field.inherited)
        line += u" (inherited)"_s;
    if (!definition.description.isEmpty())
        line += u" -- %1"_s.arg(definition.description);
    return line;
}

} // namespace fb::app
