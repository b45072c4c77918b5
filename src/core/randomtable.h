#pragma once

#include "core/contentobject.h"

#include <QList>

namespace fb::core {

// One weighted outcome; a weight below 1 counts as 1 when rolling.
struct TableEntry
{
    QString text;
    qint32 weight = 1;

    bool operator==(const TableEntry &) const = default;
};

// The whole definition of a random table, which its edit command replaces in one step.
struct RandomTableRecord
{
    QString title;
    QList<TableEntry> entries;

    bool operator==(const RandomTableRecord &) const = default;
};

// A weighted random table (encounters, loot, rumours, ...).
class RandomTable final : public ContentObject
{
public:
    static constexpr ObjectType staticType = ObjectType::RandomTable;

    explicit RandomTable(const QUuid &id = QUuid::createUuid());
    explicit RandomTable(const QString &title, const QUuid &id = QUuid::createUuid());
    ~RandomTable() override;

    const RandomTableRecord &record() const { return m_record; }
    void setRecord(const RandomTableRecord &record)
    {
        m_record = record;
        markChanged();
    }

    const QString &title() const { return m_record.title; }
    void setTitle(const QString &title)
    {
        m_record.title = title;
        markChanged();
    }

    const QList<TableEntry> &entries() const { return m_record.entries; }
    void setEntries(const QList<TableEntry> &entries)
    {
        m_record.entries = entries;
        markChanged();
    }

private:
    RandomTableRecord m_record;
};

} // namespace fb::core
