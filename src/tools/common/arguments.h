#pragma once

#include <QJsonObject>
#include <QString>

#include <optional>

namespace fb::app {

// Reading tool arguments. The server never validates arguments against the schema: each tool
// reads what it knows with these, and a value of the wrong JSON type reads as absent or empty.

// The string under key; empty when absent or not a string.
QString stringArgument(const QJsonObject &arguments, const QString &key);
// The string under key, trimmed.
QString trimmedArgument(const QJsonObject &arguments, const QString &key);
// Whether the key is present at all, whatever its value.
bool hasArgument(const QJsonObject &arguments, const QString &key);
// The boolean under key, or the fallback when absent or not a boolean.
bool boolArgument(const QJsonObject &arguments, const QString &key, bool fallback = false);
// A whole number under key (a JSON number without a fractional part, within 64 bits); nothing
// when absent, fractional or of another type.
std::optional<qint64> integerArgument(const QJsonObject &arguments, const QString &key);

} // namespace fb::app
