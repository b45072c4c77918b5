#include "core/contentobject.h"

#include "core/revision.h"

#include <algorithm>

namespace fb::core {

ContentObject::ContentObject(ObjectType type, const QUuid &id)
    : m_id(id)
    , m_type(type)
    , m_revision(nextRevision())
{}

ContentObject::~ContentObject() = default;

void ContentObject::setVisibleTo(const QStringList &audiences)
{
    m_visibleTo = sortedUnique(audiences);
    markChanged();
}

bool ContentObject::isVisibleTo(const QString &audience) const
{
    // The set is kept sorted, so membership is a binary search.
    return m_visibleTo.isEmpty()
           || std::binary_search(m_visibleTo.cbegin(), m_visibleTo.cend(), audience);
}

void ContentObject::setTags(const QStringList &tags)
{
    m_tags = sortedUnique(tags);
    markChanged();
}

void ContentObject::setAiExcluded(bool excluded)
{
    m_aiExcluded = excluded;
    markChanged();
}

void ContentObject::setPreservedProperties(const QVariantMap &properties)
{
    m_preservedProperties = properties;
    markChanged();
}

void ContentObject::markChanged()
{
    m_revision = nextRevision();
}

QStringList sortedUnique(QStringList list)
{
    std::sort(list.begin(), list.end());
    list.erase(std::unique(list.begin(), list.end()), list.end());
    return list;
}

} // namespace fb::core
