#pragma once

#include "core/contentobject.h"

#include <QList>

namespace fb::core {

// An ordering constraint against another event. The kind is kept as its stored text
// ("before", "after", "during", "same_time"; see ConstraintKind) so that a kind this version
// does not know survives and can be reported instead of being lost.
struct EventConstraint
{
    QUuid otherId;
    QString kind;

    bool operator==(const EventConstraint &) const = default;
};

// The whole record of a timeline event, which its edit command replaces in one step.
struct TimelineEventRecord
{
    QUuid timelineId;
    QString title;
    qint64 startMinute = 0;
    qint64 durationMinutes = 0; // not positive: an instantaneous event
    qint32 ordinal = 0;
    QString dateQualifier; // carried through unchanged; it belongs to the desktop application
    QList<QUuid> participants;
    QUuid locationId;
    QUuid parentId;
    bool collapsed = false;
    QList<EventConstraint> constraints;
    QList<QUuid> sceneIds;
    QString description;
    QString styleColor;
    QString styleLabel;
    QString layer;

    bool operator==(const TimelineEventRecord &) const = default;
};

// A dated story event on a timeline.
class TimelineEvent final : public ContentObject
{
public:
    static constexpr ObjectType staticType = ObjectType::TimelineEvent;

    explicit TimelineEvent(const QUuid &id = QUuid::createUuid());
    explicit TimelineEvent(const QString &title, const QUuid &id = QUuid::createUuid());
    ~TimelineEvent() override;

    const TimelineEventRecord &record() const { return m_record; }
    void setRecord(const TimelineEventRecord &record)
    {
        m_record = record;
        markChanged();
    }

    const QUuid &timelineId() const { return m_record.timelineId; }
    void setTimelineId(const QUuid &id)
    {
        m_record.timelineId = id;
        markChanged();
    }

    const QString &title() const { return m_record.title; }
    void setTitle(const QString &title)
    {
        m_record.title = title;
        markChanged();
    }

    qint64 startMinute() const { return m_record.startMinute; }
    void setStartMinute(qint64 minute)
    {
        m_record.startMinute = minute;
        markChanged();
    }

    qint64 durationMinutes() const { return m_record.durationMinutes; }
    void setDurationMinutes(qint64 minutes)
    {
        m_record.durationMinutes = minutes;
        markChanged();
    }

    qint32 ordinal() const { return m_record.ordinal; }
    void setOrdinal(qint32 ordinal)
    {
        m_record.ordinal = ordinal;
        markChanged();
    }

    const QString &dateQualifier() const { return m_record.dateQualifier; }
    void setDateQualifier(const QString &qualifier)
    {
        m_record.dateQualifier = qualifier;
        markChanged();
    }

    // Entity ids, in stored order.
    const QList<QUuid> &participants() const { return m_record.participants; }
    void setParticipants(const QList<QUuid> &ids)
    {
        m_record.participants = ids;
        markChanged();
    }

    const QUuid &locationId() const { return m_record.locationId; }
    void setLocationId(const QUuid &id)
    {
        m_record.locationId = id;
        markChanged();
    }

    const QUuid &parentId() const { return m_record.parentId; }
    void setParentId(const QUuid &id)
    {
        m_record.parentId = id;
        markChanged();
    }

    bool isCollapsed() const { return m_record.collapsed; }
    void setCollapsed(bool collapsed)
    {
        m_record.collapsed = collapsed;
        markChanged();
    }

    const QList<EventConstraint> &constraints() const { return m_record.constraints; }
    void setConstraints(const QList<EventConstraint> &constraints)
    {
        m_record.constraints = constraints;
        markChanged();
    }

    // Document ids of the scenes that show the event.
    const QList<QUuid> &sceneIds() const { return m_record.sceneIds; }
    void setSceneIds(const QList<QUuid> &ids)
    {
        m_record.sceneIds = ids;
        markChanged();
    }

    const QString &description() const { return m_record.description; }
    void setDescription(const QString &description)
    {
        m_record.description = description;
        markChanged();
    }

    const QString &styleColor() const { return m_record.styleColor; }
    void setStyleColor(const QString &color)
    {
        m_record.styleColor = color;
        markChanged();
    }

    const QString &styleLabel() const { return m_record.styleLabel; }
    void setStyleLabel(const QString &label)
    {
        m_record.styleLabel = label;
        markChanged();
    }

    const QString &layer() const { return m_record.layer; }
    void setLayer(const QString &layer)
    {
        m_record.layer = layer;
        markChanged();
    }

private:
    TimelineEventRecord m_record;
};

} // namespace fb::core
