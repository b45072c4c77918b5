#pragma once

#include "core/category.h"
#include "core/ids.h"

#include <map>
#include <memory>
#include <vector>

namespace fb::core {

// The project's codex categories. It owns every category and is the only way to change one
// that belongs to a project, so that each change stamps the category and the tree.
//
// Sibling order is the name compared without regard to letter case, then exactly, then the id
// text. A category whose parent is missing counts as top level, and categories caught in a
// parent loop are still visited once each, so a damaged tree hides nothing.
class CategoryTree
{
public:
    struct TreeEntry
    {
        const Category *category;
        int depth;
    };

    // A field of a category's effective schema: its own fields and those of its ancestors.
    struct SchemaField
    {
        FieldDefinition definition;
        QUuid categoryId; // the category that defines the field
        bool inherited;
    };

    CategoryTree();
    ~CategoryTree();
    CategoryTree(const CategoryTree &) = delete;
    CategoryTree &operator=(const CategoryTree &) = delete;

    const Category *category(const QUuid &id) const;
    bool contains(const QUuid &id) const { return m_categories.contains(id); }
    qsizetype count() const { return qsizetype(m_categories.size()); }
    bool isEmpty() const { return m_categories.empty(); }

    // Takes ownership; refuses (and so destroys) a null category or one whose id is null or
    // already present, returning null. Callers check the id first.
    const Category *add(std::unique_ptr<Category> category);
    // Gives the category back to the caller, leaving its subcategories in place; null when
    // there is none with that id.
    std::unique_ptr<Category> take(const QUuid &id);

    // Each returns false, changing nothing, when there is no category with that id.
    bool setName(const QUuid &id, const QString &name);
    bool setParentId(const QUuid &id, const QUuid &parentId);
    bool setFields(const QUuid &id, const QList<FieldDefinition> &fields);
    bool setPreservedProperties(const QUuid &id, const QVariantMap &properties);

    // Every category in ascending id text, the order of the sorted file names.
    std::vector<const Category *> all() const;
    // The direct subcategories in sibling order; the null id gives the top level.
    std::vector<const Category *> children(const QUuid &parentId) const;
    // Depth-first, parents before their subtrees, each category exactly once.
    std::vector<TreeEntry> treeOrder() const;

    // The parent, its parent and so on, nearest first. The walk stops at a missing parent or at
    // a category it has already passed, and takes at most as many steps as there are
    // categories plus one, so a damaged tree cannot make it loop.
    std::vector<const Category *> ancestors(const QUuid &id) const;
    // Whether id is rootId itself or one of its descendants.
    bool isInSubtree(const QUuid &id, const QUuid &rootId) const;

    // The fields of the ancestors from the top down, then the category's own fields.
    QList<SchemaField> effectiveSchema(const QUuid &id) const;

    // Stamped by every change to the tree or to a category in it.
    quint64 revision() const { return m_revision; }

private:
    Category *find(const QUuid &id) const;
    bool isTopLevel(const Category &category) const;
    void markChanged();

    std::map<QUuid, std::unique_ptr<Category>, IdTextLess> m_categories;
    quint64 m_revision;
};

} // namespace fb::core
