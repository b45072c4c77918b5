#include "tools/common/arguments.h"

#include <QJsonValue>

#include <cmath>

namespace fb::app {

QString stringArgument(const QJsonObject &arguments, const QString &key)
{
    return arguments.value(key).toString();
}

QString trimmedArgument(const QJsonObject &arguments, const QString &key)
{
    return stringArgument(arguments, key).trimmed();
}

bool hasArgument(const QJsonObject &arguments, const QString &key)
{
    return arguments.contains(key);
}

bool boolArgument(const QJsonObject &arguments, const QString &key, bool fallback)
{
    const QJsonValue value = arguments.value(key);
    return value.isBool() ? value.toBool() : fallback;
}

std::optional<qint64> integerArgument(const QJsonObject &arguments, const QString &key)
{
    const QJsonValue value = arguments.value(key);
    if (!value.isDouble())
        return std::nullopt;
    const double number = value.toDouble();
    // 2^63 is the first double beyond the range of a signed 64-bit integer.
    if (!std::isfinite(number) || std::trunc(number) != number || std::fabs(number) >= 9.2233720368547758e18)
        return std::nullopt;
    return value.toInteger();
}

} // namespace fb::app
