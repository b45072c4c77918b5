#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>

namespace fb::app {

// Builds the JSON Schema object a tool publishes for its arguments. Every family builds its
// schemas through this one class, so the shape ("required" left out when nothing is required,
// "items" on arrays) is decided in one place.
class ToolSchema
{
public:
    ToolSchema &string(const QString &name, const QString &description);
    ToolSchema &integer(const QString &name, const QString &description);
    ToolSchema &number(const QString &name, const QString &description);
    ToolSchema &boolean(const QString &name, const QString &description);
    ToolSchema &object(const QString &name, const QString &description);
    // An array of plain values, e.g. stringArray("aliases", ...) gives items {"type":"string"}.
    ToolSchema &array(const QString &name, const QString &description, const QString &itemType);
    // An array of records, each described by its own schema.
    ToolSchema &array(const QString &name, const QString &description, const ToolSchema &items);
    // Marks the last added property as required.
    ToolSchema &required();

    QJsonObject toJson() const;

private:
    ToolSchema &add(const QString &name, QJsonObject property);

    QJsonObject m_properties;
    QStringList m_required;
    QString m_last;
};

// One tool as "tools/list" publishes it.
struct McpToolDescriptor
{
    QString name;
    QString description;
    QJsonObject inputSchema;
};

inline McpToolDescriptor toolDescriptor(QString name, QString description,
                                        const ToolSchema &schema = ToolSchema())
{
    return {std::move(name), std::move(description), schema.toJson()};
}

} // namespace fb::app
