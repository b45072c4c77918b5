#include "core/category.h"

#include "core/revision.h"

namespace fb::core {

Category::Category(const QUuid &id)
    : m_id(id)
    , m_revision(nextRevision())
{}

Category::Category(const QString &name, const QUuid &parentId, const QUuid &id)
    : m_id(id)
    , m_name(name)
    , m_parentId(parentId)
    , m_revision(nextRevision())
{}

void Category::setName(const QString &name)
{
    m_name = name;
    m_revision = nextRevision();
}

void Category::setParentId(const QUuid &parentId)
{
    m_parentId = parentId;
    m_revision = nextRevision();
}

void Category::setFields(const QList<FieldDefinition> &fields)
{
    m_fields = fields;
    m_revision = nextRevision();
}

qsizetype Category::fieldIndex(const QString &key) const
{
    for (qsizetype i = 0; i < m_fields.size(); ++i) {
        if (m_fields.at(i).key == key)
            return i;
    }
    return -1;
}

void Category::setPreservedProperties(const QVariantMap &properties)
{
    m_preservedProperties = properties;
    m_revision = nextRevision();
}

} // namespace fb::core
