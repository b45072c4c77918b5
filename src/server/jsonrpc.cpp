#include "server/jsonrpc.h"

#include <QJsonDocument>
#include <QJsonParseError>

namespace fb::app {

namespace {

QString serialise(const QJsonObject &envelope)
{
    return QString::fromUtf8(QJsonDocument(envelope).toJson(QJsonDocument::Compact));
}

} // namespace

JsonRpcMessage parseJsonRpcMessage(const QByteArray &line)
{
    JsonRpcMessage message;
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(line, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        message.error = parseError.errorString();
        return message;
    }
    if (!document.isObject()) {
        message.error = QStringLiteral("A JSON-RPC message must be a JSON object.");
        return message;
    }
    const QJsonObject object = document.object();
    const QJsonValue method = object.value(QStringLiteral("method"));
    if (!method.isString() || method.toString().isEmpty()) {
        message.error = QStringLiteral("A JSON-RPC request must carry a string \"method\".");
        return message;
    }
    message.valid = true;
    message.method = method.toString();
    message.isNotification = !object.contains(QStringLiteral("id"));
    message.id = message.isNotification ? QJsonValue(QJsonValue::Null)
                                        : object.value(QStringLiteral("id"));
    message.params = object.value(QStringLiteral("params")).toObject();
    return message;
}

QString jsonRpcResult(const QJsonValue &id, const QJsonObject &result)
{
    return serialise({{QStringLiteral("jsonrpc"), QStringLiteral("2.0")},
                      {QStringLiteral("id"), id},
                      {QStringLiteral("result"), result}});
}

QString jsonRpcError(const QJsonValue &id, int code, const QString &message)
{
    const QJsonObject error{{QStringLiteral("code"), code}, {QStringLiteral("message"), message}};
    return serialise({{QStringLiteral("jsonrpc"), QStringLiteral("2.0")},
                      {QStringLiteral("id"), id},
                      {QStringLiteral("error"), error}});
}

} // namespace fb::app
