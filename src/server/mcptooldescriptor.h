#pragma once

#include <QJsonObject>
#include <QString>

namespace fb::app {

// One tool as "tools/list" publishes it.
struct McpToolDescriptor
{
    QString name;
    QString description;
    QJsonObject inputSchema;
};

} // namespace fb::app
