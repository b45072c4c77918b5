#include "server/toolschema.h"

#include <QJsonArray>

namespace fb::app {

namespace {

QJsonObject property(const QString &type, const QString &description)
{
    return QJsonObject{{QStringLiteral("type"), type}, {QStringLiteral("description"), description}};
}

} // namespace

ToolSchema &ToolSchema::add(const QString &name, QJsonObject property)
{
    m_properties.insert(name, property);
    m_last = name;
    return *this;
}

ToolSchema &ToolSchema::string(const QString &name, const QString &description)
{
    return add(name, property(QStringLiteral("string"), description));
}

ToolSchema &ToolSchema::integer(const QString &name, const QString &description)
{
    return add(name, property(QStringLiteral("integer"), description));
}

ToolSchema &ToolSchema::number(const QString &name, const QString &description)
{
    return add(name, property(QStringLiteral("number"), description));
}

ToolSchema &ToolSchema::boolean(const QString &name, const QString &description)
{
    return add(name, property(QStringLiteral("boolean"), description));
}

ToolSchema &ToolSchema::object(const QString &name, const QString &description)
{
    return add(name, property(QStringLiteral("object"), description));
}

ToolSchema &ToolSchema::array(const QString &name, const QString &description,
                              const QString &itemType)
{
    QJsonObject schema = property(QStringLiteral("array"), description);
    schema.insert(QStringLiteral("items"), QJsonObject{{QStringLiteral("type"), itemType}});
    return add(name, schema);
}

ToolSchema &ToolSchema::array(const QString &name, const QString &description,
                              const ToolSchema &items)
{
    QJsonObject schema = property(QStringLiteral("array"), description);
    schema.insert(QStringLiteral("items"), items.toJson());
    return add(name, schema);
}

ToolSchema &ToolSchema::required()
{
    if (!m_last.isEmpty() && !m_required.contains(m_last))
        m_required.append(m_last);
    return *this;
}

QJsonObject ToolSchema::toJson() const
{
    QJsonObject schema{{QStringLiteral("type"), QStringLiteral("object")},
                       {QStringLiteral("properties"), m_properties}};
    // Clients treat an empty "required" array differently from a missing one; the key is left
    // out when nothing is required.
    if (!m_required.isEmpty())
        schema.insert(QStringLiteral("required"), QJsonArray::fromStringList(m_required));
    return schema;
}

} // namespace fb::app
