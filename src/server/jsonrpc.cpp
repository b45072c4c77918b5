#include "server/jsonrpc.h"

#include <QJsonDocument>
#include <QJsonParseError>

using namespace Qt::StringLiterals;

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
        message.error = u"A JSON-RPC message must be a JSON object."_s;
        return message;
    }
    const QJsonObject object = document.object();
    const QJsonValue method = object.value(u"method"_s);
    if (!method.isString() || method.toString().isEmpty()) {
        message.error = u"A JSON-RPC request must carry a string \"method\"."_s;
        return message;
    }
    message.valid = true;
    message.method = method.toString();
    message.isNotification = !object.contains(u"id"_s);
    message.id = message.isNotification ? QJsonValue(QJsonValue::Null) : object.value(u"id"_s);
    message.params = object.value(u"params"_s).toObject();
    return message;
}

QString jsonRpcResult(const QJsonValue &id, const QJsonObject &result)
{
    return serialise({{u"jsonrpc"_s, u"2.0"_s}, {u"id"_s, id}, {u"result"_s, result}});
}

QString jsonRpcError(const QJsonValue &id, int code, const QString &message)
{
    const QJsonObject error{{u"code"_s, code}, {u"message"_s, message}};
    return serialise({{u"jsonrpc"_s, u"2.0"_s}, {u"id"_s, id}, {u"error"_s, error}});
}

} // namespace fb::app
