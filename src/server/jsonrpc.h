#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>

namespace fb::app {

// One input line as JSON-RPC sees it: a request, a notification, or a parse failure.
struct JsonRpcMessage
{
    bool valid = false;
    QString error;
    QJsonValue id;
    QString method;
    bool isNotification = false;
    QJsonObject params;
};

// Reads one line of UTF-8 text.
JsonRpcMessage parseJsonRpcMessage(const QByteArray &line);

// The two envelopes every answer travels in, serialised compactly (never a raw line break).
QString jsonRpcResult(const QJsonValue &id, const QJsonObject &result);
QString jsonRpcError(const QJsonValue &id, int code, const QString &message);

namespace JsonRpcCode {
inline constexpr int ParseError = -32700;
inline constexpr int MethodNotFound = -32601;
inline constexpr int InvalidParams = -32602;
} // namespace JsonRpcCode

} // namespace fb::app
