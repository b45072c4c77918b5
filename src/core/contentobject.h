#pragma once

#include "core/enumerations.h"

#include <QStringList>
#include <QUuid>
#include <QVariantMap>

namespace fb::core {

// The base of the fifteen content classes: identity, type, audiences, tags and AI exclusion.
// Objects are plain data destroyed through this base; nothing else is virtual. Every setter
// stamps a fresh revision, so setters are the only way a field changes.
class ContentObject
{
public:
    virtual ~ContentObject();

    ContentObject(const ContentObject &) = delete;
    ContentObject &operator=(const ContentObject &) = delete;

    const QUuid &id() const { return m_id; }
    ObjectType type() const { return m_type; }
    QString typeName() const { return enumName(m_type); }

    // Sorted and free of duplicates. Empty means visible to every audience.
    const QStringList &visibleTo() const { return m_visibleTo; }
    void setVisibleTo(const QStringList &audiences);
    bool isVisibleTo(const QString &audience) const;

    // Sorted and free of duplicates.
    const QStringList &tags() const { return m_tags; }
    void setTags(const QStringList &tags);

    bool isAiExcluded() const { return m_aiExcluded; }
    void setAiExcluded(bool excluded);

    // Keys of the object's file that this version does not know, written by a newer desktop
    // application; the storage layer fills them on reading and writes them back untouched.
    const QVariantMap &preservedProperties() const { return m_preservedProperties; }
    void setPreservedProperties(const QVariantMap &properties);

    // The stamp of the last change (see nextRevision()).
    quint64 revision() const { return m_revision; }

protected:
    ContentObject(ObjectType type, const QUuid &id);

    // Every setter of a derived class ends with this.
    void markChanged();

private:
    QUuid m_id;
    ObjectType m_type;
    QStringList m_visibleTo;
    QStringList m_tags;
    bool m_aiExcluded = false;
    QVariantMap m_preservedProperties;
    quint64 m_revision;
};

// The object as a T when its type code says it is one, else null.
template<typename T>
T *objectCast(ContentObject *object)
{
    return object && object->type() == T::staticType ? static_cast<T *>(object) : nullptr;
}

template<typename T>
const T *objectCast(const ContentObject *object)
{
    return object && object->type() == T::staticType ? static_cast<const T *>(object) : nullptr;
}

// Sorts a list and drops repeated entries, the form in which audience and tag sets are kept.
QStringList sortedUnique(QStringList list);

} // namespace fb::core
