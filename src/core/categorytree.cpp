#include "core/categorytree.h"

#include "core/revision.h"

#include <QSet>

#include <algorithm>

namespace fb::core {

namespace {

bool precedesCategory(const Category *a, const Category *b)
{
    if (const int folded = a->name().compare(b->name(), Qt::CaseInsensitive))
        return folded < 0;
    if (a->name() != b->name())
        return a->name() < b->name();
    return compareIds(a->id(), b->id()) < 0;
}

} // namespace

CategoryTree::CategoryTree()
    : m_revision(nextRevision())
{}

CategoryTree::~CategoryTree() = default;

const Category *CategoryTree::category(const QUuid &id) const
{
    return find(id);
}

Category *CategoryTree::find(const QUuid &id) const
{
    const auto it = m_categories.find(id);
    return it == m_categories.end() ? nullptr : it->second.get();
}

const Category *CategoryTree::add(std::unique_ptr<Category> category)
{
    if (!category || category->id().isNull() || contains(category->id()))
        return nullptr;
    const QUuid id = category->id();
    const Category *added = category.get();
    m_categories.emplace(id, std::move(category));
    markChanged();
    return added;
}

std::unique_ptr<Category> CategoryTree::take(const QUuid &id)
{
    const auto it = m_categories.find(id);
    if (it == m_categories.end())
        return nullptr;
    std::unique_ptr<Category> taken = std::move(it->second);
    m_categories.erase(it);
    markChanged();
    return taken;
}

bool CategoryTree::setName(const QUuid &id, const QString &name)
{
    Category *category = find(id);
    if (!category)
        return false;
    category->setName(name);
    markChanged();
    return true;
}

bool CategoryTree::setParentId(const QUuid &id, const QUuid &parentId)
{
    Category *category = find(id);
    if (!category)
        return false;
    category->setParentId(parentId);
    markChanged();
    return true;
}

bool CategoryTree::setFields(const QUuid &id, const QList<FieldDefinition> &fields)
{
    Category *category = find(id);
    if (!category)
        return false;
    category->setFields(fields);
    markChanged();
    return true;
}

bool CategoryTree::setPreservedProperties(const QUuid &id, const QVariantMap &properties)
{
    Category *category = find(id);
    if (!category)
        return false;
    category->setPreservedProperties(properties);
    markChanged();
    return true;
}

std::vector<const Category *> CategoryTree::all() const
{
    std::vector<const Category *> result;
    result.reserve(m_categories.size());
    for (const auto &entry : m_categories)
        result.push_back(entry.second.get());
    return result;
}

bool CategoryTree::isTopLevel(const Category &category) const
{
    return category.parentId().isNull() || !contains(category.parentId());
}

std::vector<const Category *> CategoryTree::children(const QUuid &parentId) const
{
    std::vector<const Category *> result;
    for (const auto &entry : m_categories) {
        const Category &category = *entry.second;
        if (parentId.isNull() ? isTopLevel(category) : category.parentId() == parentId)
            result.push_back(&category);
    }
    std::sort(result.begin(), result.end(), precedesCategory);
    return result;
}

std::vector<CategoryTree::TreeEntry> CategoryTree::treeOrder() const
{
    // One pass groups the children by parent, so the walk stays linear for large trees.
    std::map<QUuid, std::vector<const Category *>, IdTextLess> childrenByParent;
    std::vector<const Category *> roots;
    for (const auto &entry : m_categories) {
        const Category *category = entry.second.get();
        if (isTopLevel(*category))
            roots.push_back(category);
        else
            childrenByParent[category->parentId()].push_back(category);
    }
    for (auto &entry : childrenByParent)
        std::sort(entry.second.begin(), entry.second.end(), precedesCategory);
    std::sort(roots.begin(), roots.end(), precedesCategory);

    std::vector<TreeEntry> result;
    result.reserve(m_categories.size());
    QSet<QUuid> visited;
    const auto walk = [&](const Category *start) {
        std::vector<TreeEntry> stack{{start, 0}};
        while (!stack.empty()) {
            const TreeEntry current = stack.back();
            stack.pop_back();
            if (visited.contains(current.category->id()))
                continue;
            visited.insert(current.category->id());
            result.push_back(current);
            const auto children = childrenByParent.find(current.category->id());
            if (children == childrenByParent.end())
                continue;
            for (auto it = children->second.rbegin(); it != children->second.rend(); ++it)
                stack.push_back({*it, current.depth + 1});
        }
    };
    for (const Category *root : roots)
        walk(root);
    // What is left hangs in a parent loop; each such category starts a walk of its own.
    for (const auto &entry : m_categories) {
        if (!visited.contains(entry.first))
            walk(entry.second.get());
    }
    return result;
}

std::vector<const Category *> CategoryTree::ancestors(const QUuid &id) const
{
    std::vector<const Category *> result;
    QSet<QUuid> seen{id};
    const Category *current = find(id);
    for (std::size_t steps = 0; current && steps <= m_categories.size(); ++steps) {
        current = find(current->parentId());
        if (!current || seen.contains(current->id()))
            break;
        seen.insert(current->id());
        result.push_back(current);
    }
    return result;
}

bool CategoryTree::isInSubtree(const QUuid &id, const QUuid &rootId) const
{
    if (id == rootId)
        return true;
    const std::vector<const Category *> chain = ancestors(id);
    return std::any_of(chain.begin(), chain.end(),
                       [&](const Category *ancestor) { return ancestor->id() == rootId; });
}

QList<CategoryTree::SchemaField> CategoryTree::effectiveSchema(const QUuid &id) const
{
    QList<SchemaField> result;
    const Category *own = find(id);
    if (!own)
        return result;
    const std::vector<const Category *> chain = ancestors(id);
    for (auto it = chain.rbegin(); it != chain.rend(); ++it) {
        for (const FieldDefinition &field : (*it)->fields())
            result.append({field, (*it)->id(), true});
    }
    for (const FieldDefinition &field : own->fields())
        result.append({field, own->id(), false});
    return result;
}

void CategoryTree::markChanged()
{
    m_revision = nextRevision();
}

} // namespace fb::core
