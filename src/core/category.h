#pragma once

#include "core/enumerations.h"

#include <QList>
#include <QStringList>
#include <QUuid>
#include <QVariantMap>

namespace fb::core {

// One typed field of a category's schema.
struct FieldDefinition
{
    QString key; // the label trimmed and lower-cased when made by this server
    QString label;
    FieldType type = FieldType::Text;
    bool required = false;
    QString description;
    QStringList options; // for choice fields

    bool operator==(const FieldDefinition &) const = default;
};

// A codex category: a node of the category tree with its own ordered field schema. Inside a
// project, categories change only through CategoryTree, which stamps both revisions.
class Category
{
public:
    explicit Category(const QUuid &id = QUuid::createUuid());
    explicit Category(const QString &name, const QUuid &parentId = QUuid(),
                      const QUuid &id = QUuid::createUuid());

    const QUuid &id() const { return m_id; }

    const QString &name() const { return m_name; }
    void setName(const QString &name);

    // Null for a top-level category.
    const QUuid &parentId() const { return m_parentId; }
    void setParentId(const QUuid &parentId);

    // The category's own fields, in display order; inherited fields live on the ancestors.
    const QList<FieldDefinition> &fields() const { return m_fields; }
    void setFields(const QList<FieldDefinition> &fields);
    // The position of the own field with that key, or -1.
    qsizetype fieldIndex(const QString &key) const;

    // Keys of the category's file that this version does not know (see ContentObject).
    const QVariantMap &preservedProperties() const { return m_preservedProperties; }
    void setPreservedProperties(const QVariantMap &properties);

    // The stamp of the last change (see nextRevision()).
    quint64 revision() const { return m_revision; }

private:
    QUuid m_id;
    QString m_name;
    QUuid m_parentId;
    QList<FieldDefinition> m_fields;
    QVariantMap m_preservedProperties;
    quint64 m_revision;
};

} // namespace fb::core
