#pragma once

#include "core/contentobject.h"

namespace fb::core {

// A named track of story events; the events refer to it by id.
class Timeline final : public ContentObject
{
public:
    static constexpr ObjectType staticType = ObjectType::Timeline;

    explicit Timeline(const QUuid &id = QUuid::createUuid());
    explicit Timeline(const QString &title, const QUuid &id = QUuid::createUuid());
    ~Timeline() override;

    const QString &title() const { return m_title; }
    void setTitle(const QString &title)
    {
        m_title = title;
        markChanged();
    }

    const QString &description() const { return m_description; }
    void setDescription(const QString &description)
    {
        m_description = description;
        markChanged();
    }

    qint32 sortIndex() const { return m_sortIndex; }
    void setSortIndex(qint32 sortIndex)
    {
        m_sortIndex = sortIndex;
        markChanged();
    }

private:
    QString m_title;
    QString m_description;
    qint32 m_sortIndex = 0;
};

} // namespace fb::core
