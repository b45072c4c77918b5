#pragma once

#include "server/mcptooldescriptor.h"
#include "server/mcptoolresult.h"

#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QString>

#include <functional>
#include <optional>

namespace fb::app {

using McpToolHandler = std::function<McpToolResult(const QJsonObject &arguments)>;
// Runs around every call of a known tool: it prepares the call (adopts what other programs
// changed on disk) and runs it through `runTool`, or answers in its place when the call cannot
// run now.
using McpToolCallHook = std::function<McpToolResult(const std::function<McpToolResult()> &runTool)>;

// The MCP endpoint: turns one JSON-RPC line into at most one answer line, and keeps the
// ordered registry of tools that "tools/list" publishes and "tools/call" runs.
class McpServer
{
public:
    McpServer(QString name, QString version, QString instructions);

    // Registers a tool; a tool of the same name keeps its place in the list but takes the new
    // description, schema and handler.
    void addTool(const McpToolDescriptor &descriptor, McpToolHandler handler);
    // Runs around every call of a known tool; used to adopt edits made by other programs.
    void setToolCallHook(McpToolCallHook hook);

    // The compact response for a line, or nothing for blank lines and notifications. The
    // line is given as read, in UTF-8, or as text.
    std::optional<QString> handleLine(const QByteArray &line);
    std::optional<QString> handleLine(const QString &line);

    QJsonObject listTools() const;
    const QList<McpToolDescriptor> &tools() const { return m_tools; }

    static const QStringList &supportedProtocolVersions();

private:
    QJsonObject initializeResult(const QJsonObject &params) const;
    QString callTool(const QJsonValue &id, const QJsonObject &params);

    QString m_name;
    QString m_version;
    QString m_instructions;
    QList<McpToolDescriptor> m_tools;
    QHash<QString, McpToolHandler> m_handlers;
    McpToolCallHook m_toolCallHook;
};

} // namespace fb::app
