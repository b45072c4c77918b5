#include "server/mcpserver.h"

#include "server/jsonrpc.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace fb::app {

McpServer::McpServer(QString name, QString version, QString instructions)
    : m_name(std::move(name))
    , m_version(std::move(version))
    , m_instructions(std::move(instructions))
{}

const QStringList &McpServer::supportedProtocolVersions()
{
    // Oldest first; the last one is the server's own version, offered when the client asks
    // for one the server does not know.
    static const QStringList versions{u"2024-11-05"_s, u"2025-03-26"_s, u"2025-06-18"_s};
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

void McpServer::setToolCallHook(McpToolCallHook hook)
{
    m_toolCallHook = std::move(hook);
}

namespace {

// Whether a line holds nothing but white space. The bytes are looked at first, so that a long
// line costs no copy; only a line that starts with a non-ASCII byte, which could be Unicode
// white space, is decoded.
bool isBlank(QByteArrayView line)
{
    const QByteArrayView trimmed = line.trimmed();
    if (trimmed.isEmpty())
        return true;
    return quint8(trimmed.front()) >= 0x80 && QString::fromUtf8(trimmed).trimmed().isEmpty();
}

} // namespace

std::optional<QString> McpServer::handleLine(const QString &line)
{
    return handleLine(line.toUtf8());
}

std::optional<QString> McpServer::handleLine(const QByteArray &line)
{
    if (isBlank(line))
        return std::nullopt;

    // Malformed UTF-8 reads as replacement characters, as everywhere the server decodes text,
    // instead of failing the whole message.
    const JsonRpcMessage message = parseJsonRpcMessage(
        line.isValidUtf8() ? line : QString::fromUtf8(line).toUtf8());
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
                        u"Unknown method: %1"_s.arg(message.method));
}

QJsonObject McpServer::initializeResult(const QJsonObject &params) const
{
    const QString requested = params.value(u"protocolVersion"_s).toString();
    // The server never refuses a version: an unknown one is answered with the newest it has.
    const QString version = supportedProtocolVersions().contains(requested)
                                ? requested
                                : supportedProtocolVersions().last();
    return {{u"protocolVersion"_s, version},
            {u"capabilities"_s, QJsonObject{{u"tools"_s, QJsonObject()}}},
            {u"serverInfo"_s, QJsonObject{{u"name"_s, m_name}, {u"version"_s, m_version}}},
            {u"instructions"_s, m_instructions}};
}

QJsonObject McpServer::listTools() const
{
    QJsonArray tools;
    for (const McpToolDescriptor &tool : m_tools) {
        tools.append(QJsonObject{{u"name"_s, tool.name},
                                 {u"description"_s, tool.description},
                                 {u"inputSchema"_s, tool.inputSchema}});
    }
    return {{u"tools"_s, tools}};
}

QString McpServer::callTool(const QJsonValue &id, const QJsonObject &params)
{
    const QString name = params.value(u"name"_s).toString();
    const auto handler = m_handlers.constFind(name);
    if (handler == m_handlers.constEnd()) {
        return jsonRpcError(id, JsonRpcCode::InvalidParams, u"Unknown tool: %1"_s.arg(name));
    }
    const QJsonObject arguments = params.value(u"arguments"_s).toObject();
    const auto runTool = [&] { return (*handler)(arguments); };
    const McpToolResult outcome = m_toolCallHook ? m_toolCallHook(runTool) : runTool();
    QJsonObject result{
        {u"content"_s, QJsonArray{QJsonObject{{u"type"_s, u"text"_s}, {u"text"_s, outcome.text}}}}};
    // Success leaves "isError" out altogether rather than writing it as false.
    if (!outcome.ok)
        result.insert(u"isError"_s, true);
    return jsonRpcResult(id, result);
}

} // namespace fb::app
