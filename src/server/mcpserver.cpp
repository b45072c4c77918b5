#include "server/mcpserver.h"

#include "server/jsonrpc.h"

#include <QJsonArray>

namespace fb::app {

McpServer::McpServer(QString name, QString version, QString instructions)
    : m_name(std::move(name))
    , m_version(std::move(version))
    , m_instructions(std::move(instructions))
{
}

const QStringList &McpServer::supportedProtocolVersions()
{
    // Oldest first; the last one is the server's own version, offered when the client asks
    // for one the server does not know.
    static const QStringList versions{QStringLiteral("2024-11-05"), QStringLiteral("2025-03-26"),
                                      QStringLiteral("2025-06-18")};
    return versions;
}

void McpServer::addTool(const McpToolDescriptor &descriptor, McpToolHandler handler)
{
    const auto existing = std::find_if(m_tools.begin(), m_tools.end(), [&](const auto &tool) {
        return tool.name == descriptor.name;
    });
    if (existing != m_tools.end())
        *existing = descriptor;
    else
        m_tools.append(descriptor);
    m_handlers.insert(descriptor.name, std::move(handler));
}

void McpServer::setToolCallHook(std::function<void()> hook)
{
    m_toolCallHook = std::move(hook);
}

std::optional<QString> McpServer::handleLine(const QString &line)
{
    if (line.trimmed().isEmpty())
        return std::nullopt;

    const JsonRpcMessage message = parseJsonRpcMessage(line);
    if (!message.valid)
        return jsonRpcError(QJsonValue::Null, JsonRpcCode::ParseError, message.error);
    if (message.isNotification)
        return std::nullopt;

    if (message.method == u"initialize")
        return jsonRpcResult(message.id, initializeResult(message.params));
    if (message.method == u"tools/list")
        return jsonRpcResult(message.id, listTools());
    if (message.method == u"tools/call")
        return callTool(message.id, message.params);
    if (message.method == u"ping")
        return jsonRpcResult(message.id, QJsonObject());
    return jsonRpcError(message.id, JsonRpcCode::MethodNotFound,
                        QStringLiteral("Unknown method: %1").arg(message.method));
}

QJsonObject McpServer::initializeResult(const QJsonObject &params) const
{
    const QString requested = params.value(QStringLiteral("protocolVersion")).toString();
    // The server never refuses a version: an unknown one is answered with the newest it has.
    const QString version = supportedProtocolVersions().contains(requested)
                                ? requested
                                : supportedProtocolVersions().last();
    return {{QStringLiteral("protocolVersion"), version},
            {QStringLiteral("capabilities"),
             QJsonObject{{QStringLiteral("tools"), QJsonObject()}}},
            {QStringLiteral("serverInfo"),
             QJsonObject{{QStringLiteral("name"), m_name}, {QStringLiteral("version"), m_version}}},
            {QStringLiteral("instructions"), m_instructions}};
}

QJsonObject McpServer::listTools() const
{
    QJsonArray tools;
    for (const McpToolDescriptor &tool : m_tools) {
        tools.append(QJsonObject{{QStringLiteral("name"), tool.name},
                                 {QStringLiteral("description"), tool.description},
                                 {QStringLiteral("inputSchema"), tool.inputSchema}});
    }
    return {{QStringLiteral("tools"), tools}};
}

QString McpServer::callTool(const QJsonValue &id, const QJsonObject &params)
{
    const QString name = params.value(QStringLiteral("name")).toString();
    const auto handler = m_handlers.constFind(name);
    if (handler == m_handlers.constEnd()) {
        return jsonRpcError(id, JsonRpcCode::InvalidParams,
                            QStringLiteral("Unknown tool: %1").arg(name));
    }
    if (m_toolCallHook)
        m_toolCallHook();

    const McpToolResult outcome = (*handler)(params.value(QStringLiteral("arguments")).toObject());
    QJsonObject result{
        {QStringLiteral("content"),
         QJsonArray{QJsonObject{{QStringLiteral("type"), QStringLiteral("text")},
                                {QStringLiteral("text"), outcome.text}}}}};
    // Success leaves "isError" out altogether rather than writing it as false.
    if (!outcome.ok)
        result.insert(QStringLiteral("isError"), true);
    return jsonRpcResult(id, result);
}

} // namespace fb::app
