#pragma once

#include "core/contentobject.h"

#include <QList>

namespace fb::core {

struct StatLine
{
    QString label;
    QString value;

    bool operator==(const StatLine &) const = default;
};

struct StatAction
{
    QString name;
    QString text;

    bool operator==(const StatAction &) const = default;
};

// The whole record of a stat block, which its edit command replaces in one step.
struct StatBlockRecord
{
    QString title;
    QString system; // free text, such as "D&D 5e"
    QString notes;
    QList<StatLine> stats;
    QList<StatAction> actions;

    bool operator==(const StatBlockRecord &) const = default;
};

// A creature or NPC stat block for tabletop games.
class StatBlock final : public ContentObject
{
public:
    static constexpr ObjectType staticType = ObjectType::StatBlock;

    explicit StatBlock(const QUuid &id = QUuid::createUuid());
    explicit StatBlock(const QString &title, const QUuid &id = QUuid::createUuid());
    ~StatBlock() override;

    const StatBlockRecord &record() const { return m_record; }
    void setRecord(const StatBlockRecord &record)
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

    const QString &system() const { return m_record.system; }
    void setSystem(const QString &system)
    {
        m_record.system = system;
        markChanged();
    }

    const QString &notes() const { return m_record.notes; }
    void setNotes(const QString &notes)
    {
        m_record.notes = notes;
        markChanged();
    }

    const QList<StatLine> &stats() const { return m_record.stats; }
    void setStats(const QList<StatLine> &stats)
    {
        m_record.stats = stats;
        markChanged();
    }

    const QList<StatAction> &actions() const { return m_record.actions; }
    void setActions(const QList<StatAction> &actions)
    {
        m_record.actions = actions;
        markChanged();
    }

private:
    StatBlockRecord m_record;
};

} // namespace fb::core
