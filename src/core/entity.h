#pragma once

#include "core/contentobject.h"

#include <QList>
#include <QMap>

#include <optional>

namespace fb::core {

// The value a field holds from a story instant on (state over time).
struct TimedValue
{
    QString fieldKey;
    qint64 instant = 0;
    QString value;

    bool operator==(const TimedValue &) const = default;
};

// A codex entry (character, place, thing, idea) filed under a category.
class Entity final : public ContentObject
{
public:
    static constexpr ObjectType staticType = ObjectType::Entity;

    explicit Entity(const QUuid &id = QUuid::createUuid());
    explicit Entity(const QString &name, const QUuid &id = QUuid::createUuid());
    ~Entity() override;

    const QUuid &categoryId() const { return m_categoryId; }
    void setCategoryId(const QUuid &id)
    {
        m_categoryId = id;
        markChanged();
    }

    const QString &name() const { return m_name; }
    void setName(const QString &name)
    {
        m_name = name;
        markChanged();
    }

    // In stored order.
    const QStringList &aliases() const { return m_aliases; }
    void setAliases(const QStringList &aliases)
    {
        m_aliases = aliases;
        markChanged();
    }

    // Asset paths of the entity's images.
    const QStringList &gallery() const { return m_gallery; }
    void setGallery(const QStringList &paths)
    {
        m_gallery = paths;
        markChanged();
    }

    // Field values by field key, as text; a reference field holds the target entity's id text.
    const QMap<QString, QString> &values() const { return m_values; }
    void setValues(const QMap<QString, QString> &values)
    {
        m_values = values;
        markChanged();
    }
    QString value(const QString &fieldKey) const { return m_values.value(fieldKey); }

    std::optional<qint64> birthInstant() const { return m_birthInstant; }
    void setBirthInstant(std::optional<qint64> instant)
    {
        m_birthInstant = instant;
        markChanged();
    }

    std::optional<qint64> deathInstant() const { return m_deathInstant; }
    void setDeathInstant(std::optional<qint64> instant)
    {
        m_deathInstant = instant;
        markChanged();
    }

    // In stored order; on equal instants the later entry wins.
    const QList<TimedValue> &timedValues() const { return m_timedValues; }
    void setTimedValues(const QList<TimedValue> &values)
    {
        m_timedValues = values;
        markChanged();
    }

private:
    QUuid m_categoryId;
    QString m_name;
    QStringList m_aliases;
    QStringList m_gallery;
    QMap<QString, QString> m_values;
    std::optional<qint64> m_birthInstant;
    std::optional<qint64> m_deathInstant;
    QList<TimedValue> m_timedValues;
};

} // namespace fb::core
