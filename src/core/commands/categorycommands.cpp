#include "core/commands/categorycommands.h"

#include "core/categorytree.h"
#include "core/entity.h"
#include "core/project.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace fb::core {

AddCategoryCommand::AddCategoryCommand(Project &project, std::unique_ptr<Category> category)
    : m_project(project)
    , m_id(category ? category->id() : QUuid())
    , m_category(std::move(category))
{}

AddCategoryCommand::~AddCategoryCommand() = default;

void AddCategoryCommand::redo()
{
    if (m_category && !m_project.categories().contains(m_id))
        m_project.categories().add(std::move(m_category));
}

void AddCategoryCommand::undo()
{
    if (!m_category && !m_id.isNull())
        m_category = m_project.categories().take(m_id);
}

QString AddCategoryCommand::label() const
{
    return u"Add category"_s;
}

RemoveCategoryCommand::RemoveCategoryCommand(Project &project, const QUuid &id)
    : m_project(project)
    , m_id(id)
{}

RemoveCategoryCommand::~RemoveCategoryCommand() = default;

void RemoveCategoryCommand::redo()
{
    CategoryTree &tree = m_project.categories();
    const Category *category = tree.category(m_id);
    if (m_category || !category)
        return;
    const QUuid parentId = category->parentId();
    m_movedSubcategories.clear();
    for (const Category *child : tree.all()) {
        if (child->parentId() == m_id && child->id() != m_id)
            m_movedSubcategories.push_back(child->id());
    }
    for (const QUuid &child : m_movedSubcategories)
        tree.setParentId(child, parentId);
    m_movedEntities.clear();
    for (Entity *entity : m_project.objectsOfType<Entity>()) {
        if (entity->categoryId() == m_id) {
            m_movedEntities.push_back(entity->id());
            entity->setCategoryId(parentId);
        }
    }
    m_category = tree.take(m_id);
}

void RemoveCategoryCommand::undo()
{
    CategoryTree &tree = m_project.categories();
    if (!m_category || tree.contains(m_id))
        return;
    tree.add(std::move(m_category));
    for (const QUuid &child : m_movedSubcategories)
        tree.setParentId(child, m_id);
    for (const QUuid &id : m_movedEntities) {
        if (Entity *entity = m_project.objectAs<Entity>(id))
            entity->setCategoryId(m_id);
    }
}

QString RemoveCategoryCommand::label() const
{
    return u"Remove category"_s;
}

RenameCategoryCommand::RenameCategoryCommand(Project &project, const QUuid &id, const QString &name)
    : ValueSwapCommand(name)
    , m_project(project)
    , m_id(id)
{}

std::optional<QString> RenameCategoryCommand::read() const
{
    const Category *category = m_project.categories().category(m_id);
    return category ? std::optional<QString>(category->name()) : std::nullopt;
}

void RenameCategoryCommand::write(const std::optional<QString> &name)
{
    if (name)
        m_project.categories().setName(m_id, *name);
}

QString RenameCategoryCommand::label() const
{
    return u"Rename category"_s;
}

ReparentCategoryCommand::ReparentCategoryCommand(Project &project, const QUuid &id,
                                                 const QUuid &newParent)
    : m_project(project)
    , m_id(id)
    , m_newParent(newParent)
{}

Result<void> ReparentCategoryCommand::check(const CategoryTree &tree, const QUuid &id,
                                            const QUuid &newParent)
{
    if (!tree.contains(id))
        return makeError(u"Cannot reparent an unknown category."_s);
    if (newParent.isNull())
        return {};
    if (!tree.contains(newParent))
        return makeError(u"Cannot reparent under an unknown category."_s);
    if (tree.isInSubtree(newParent, id))
        return makeError(u"Reparenting there would create a cycle."_s);
    return {};
}

void ReparentCategoryCommand::redo()
{
    m_previous.reset();
    CategoryTree &tree = m_project.categories();
    if (!check(tree, m_id, m_newParent))
        return;
    m_previous = tree.category(m_id)->parentId();
    tree.setParentId(m_id, m_newParent);
}

void ReparentCategoryCommand::undo()
{
    // The former parent is put back unchecked: it is the state from before the redo, even when
    // damaged data named a parent that no longer exists.
    if (m_previous)
        m_project.categories().setParentId(m_id, *m_previous);
}

QString ReparentCategoryCommand::label() const
{
    return u"Move category"_s;
}

FieldListCommand::FieldListCommand(Project &project, const QUuid &categoryId)
    : m_project(project)
    , m_id(categoryId)
{}

std::optional<QList<FieldDefinition>> FieldListCommand::read() const
{
    const Category *category = m_project.categories().category(m_id);
    return category ? std::optional<QList<FieldDefinition>>(category->fields()) : std::nullopt;
}

void FieldListCommand::write(const QList<FieldDefinition> &fields)
{
    m_project.categories().setFields(m_id, fields);
}

AddFieldCommand::AddFieldCommand(Project &project, const QUuid &categoryId, FieldDefinition field)
    : FieldListCommand(project, categoryId)
    , m_field(std::move(field))
{}

QList<FieldDefinition> AddFieldCommand::edited(QList<FieldDefinition> fields) const
{
    const auto same = std::find_if(fields.begin(), fields.end(), [this](const FieldDefinition &f) {
        return f.key == m_field.key;
    });
    if (same == fields.end())
        fields.append(m_field);
    else
        *same = m_field;
    return fields;
}

QString AddFieldCommand::label() const
{
    return u"Add field"_s;
}

RemoveFieldCommand::RemoveFieldCommand(Project &project, const QUuid &categoryId, const QString &key)
    : FieldListCommand(project, categoryId)
    , m_key(key)
{}

QList<FieldDefinition> RemoveFieldCommand::edited(QList<FieldDefinition> fields) const
{
    fields.removeIf([this](const FieldDefinition &field) { return field.key == m_key; });
    return fields;
}

QString RemoveFieldCommand::label() const
{
    return u"Remove field"_s;
}

MoveFieldCommand::MoveFieldCommand(Project &project, const QUuid &categoryId, const QString &key,
                                   int position)
    : FieldListCommand(project, categoryId)
    , m_key(key)
    , m_position(position)
{}

QList<FieldDefinition> MoveFieldCommand::edited(QList<FieldDefinition> fields) const
{
    const auto from = std::find_if(fields.cbegin(), fields.cend(),
                                   [this](const FieldDefinition &field) {
                                       return field.key == m_key;
                                   });
    if (from == fields.cend())
        return fields;
    const qsizetype to = std::clamp<qsizetype>(m_position, 0, fields.size() - 1);
    fields.move(from - fields.cbegin(), to);
    return fields;
}

QString MoveFieldCommand::label() const
{
    return u"Move field"_s;
}

} // namespace fb::core
