#pragma once

// The commands that shape the codex category tree and the categories' own field schemas. They
// hold the project and the category's id and look the category up at every redo and undo.

#include "core/category.h"
#include "core/commands/valuecommands.h"
#include "core/result.h"

#include <QList>
#include <QUuid>

#include <memory>
#include <vector>

namespace fb::core {

// Adds a new category; like an added object, the same instance goes back and forth between the
// command and the tree.
class AddCategoryCommand final : public Command
{
public:
    AddCategoryCommand(Project &project, std::unique_ptr<Category> category);
    ~AddCategoryCommand() override;

    void redo() override;
    void undo() override;
    QString label() const override;

    const QUuid &categoryId() const { return m_id; }

private:
    Project &m_project;
    QUuid m_id;
    std::unique_ptr<Category> m_category;
};

// Removes a category and moves its subcategories and the entities filed in it up to its parent
// (to the top level and to no category when it has none). The removed category lives in the
// command; undo puts it back and files every moved subcategory and entity where it was.
class RemoveCategoryCommand final : public Command
{
public:
    RemoveCategoryCommand(Project &project, const QUuid &id);
    ~RemoveCategoryCommand() override;

    void redo() override;
    void undo() override;
    QString label() const override;

private:
    Project &m_project;
    QUuid m_id;
    std::unique_ptr<Category> m_category;
    std::vector<QUuid> m_movedSubcategories;
    std::vector<QUuid> m_movedEntities;
};

class RenameCategoryCommand final : public ValueSwapCommand<std::optional<QString>>
{
public:
    RenameCategoryCommand(Project &project, const QUuid &id, const QString &name);
    QString label() const override;

private:
    std::optional<QString> read() const override;
    void write(const std::optional<QString> &name) override;

    Project &m_project;
    QUuid m_id;
};

// Moves a category under another one, or to the top level with the null id. A move that check()
// refuses does nothing; undo puts back the parent the category had before the last redo.
class ReparentCategoryCommand final : public Command
{
public:
    ReparentCategoryCommand(Project &project, const QUuid &id, const QUuid &newParent);

    void redo() override;
    void undo() override;
    QString label() const override;

    // Whether the tree allows the move: "Cannot reparent an unknown category.", "Cannot
    // reparent under an unknown category." or "Reparenting there would create a cycle." when it
    // does not.
    static Result<void> check(const CategoryTree &tree, const QUuid &id, const QUuid &newParent);

private:
    Project &m_project;
    QUuid m_id;
    QUuid m_newParent;
    std::optional<QUuid> m_previous;
};

// The base of the field commands: redo edits a copy of the category's own field list and undo
// puts the whole former list back, so a field returns exactly where it was.
class FieldListCommand : public EditCommand<QList<FieldDefinition>>
{
public:
    const QUuid &categoryId() const { return m_id; }

protected:
    FieldListCommand(Project &project, const QUuid &categoryId);

private:
    std::optional<QList<FieldDefinition>> read() const final;
    void write(const QList<FieldDefinition> &fields) final;

    Project &m_project;
    QUuid m_id;
};

// Appends a field to the category's own schema, or replaces the own field that has its key in
// place.
class AddFieldCommand final : public FieldListCommand
{
public:
    AddFieldCommand(Project &project, const QUuid &categoryId, FieldDefinition field);
    QString label() const override;

private:
    QList<FieldDefinition> edited(QList<FieldDefinition> fields) const override;

    FieldDefinition m_field;
};

// Removes the own field with that key. The values entities hold under the key are left alone,
// so undo brings the field back with its data.
class RemoveFieldCommand final : public FieldListCommand
{
public:
    RemoveFieldCommand(Project &project, const QUuid &categoryId, const QString &key);
    QString label() const override;

private:
    QList<FieldDefinition> edited(QList<FieldDefinition> fields) const override;

    QString m_key;
};

// Moves the own field with that key to a 0-based position, clamped to the list.
class MoveFieldCommand final : public FieldListCommand
{
public:
    MoveFieldCommand(Project &project, const QUuid &categoryId, const QString &key, int position);
    QString label() const override;

private:
    QList<FieldDefinition> edited(QList<FieldDefinition> fields) const override;

    QString m_key;
    int m_position;
};

} // namespace fb::core
