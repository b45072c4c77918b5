#pragma once

#include "core/categorytree.h"

#include <QList>
#include <QString>
#include <QUuid>

#include <optional>
#include <vector>

namespace fb::core {
class CompositeCommand;
class Project;
} // namespace fb::core

namespace fb::app {

// Category names compare trimmed, lower-cased and whole. The id of the first category in tree
// order with that name; the null id when there is none.
QUuid findCategory(const core::CategoryTree &tree, const QString &name);
// Every category with that name, in tree order.
std::vector<const core::Category *> findCategories(const core::CategoryTree &tree,
                                                   const QString &name);

// The id of the category named name. When there is none, a new one with the trimmed name and
// the standard Summary field is added to change (under parentId when that names an existing
// category, else at top level) and its id returned; nothing is applied here.
QUuid ensureCategory(core::Project &project, core::CompositeCommand &change, const QString &name,
                     const QUuid &parentId);

// The field every category made by this server starts with.
core::FieldDefinition standardSummaryField();
// The key of a field defined by its label: the label trimmed and lower-cased, nothing else.
QString fieldKeyForLabel(const QString &label);

// The effective schema of a top-level category that ensureCategory is about to create: its
// Summary field alone. Tools check field names against it before the category exists.
QList<core::CategoryTree::SchemaField> newCategorySchema();
// The field of a schema whose key or label matches name (trimmed, lower-cased), first in
// schema order.
std::optional<core::CategoryTree::SchemaField> findSchemaField(
    const QList<core::CategoryTree::SchemaField> &schema, const QString &name);

// One line of a schema listing: "  - Label [type] (key)", then ", required", the options of a
// choice field, " (inherited)" and the description.
QString schemaFieldLine(const core::CategoryTree::SchemaField &field);

} // namespace fb::app
