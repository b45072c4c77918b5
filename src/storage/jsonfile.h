#pragma once

#include "core/result.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

namespace fb::app {

// One stored JSON file: a single JSON object, written indented with its keys sorted, so an
// unchanged object always gives the same bytes.

// Fails with "Cannot read file: %1" or, when the file holds anything but a JSON object,
// "Invalid JSON in file: %1".
Result<QJsonObject> readJsonFile(const QString &path);
// The same, also handing over the bytes read, for callers that remember what they read.
Result<QJsonObject> readJsonFile(const QString &path, QByteArray &bytes);

QByteArray jsonFileBytes(const QJsonObject &object);

// Replaces the file through an atomic save file, so a failure leaves it as it was: "Cannot
// write file: %1" when it cannot be opened, "Failed to write file: %1" when writing or
// committing fails.
Result<void> writeFileAtomically(const QString &path, const QByteArray &bytes);

Result<void> writeJsonFile(const QString &path, const QJsonObject &object);

} // namespace fb::app
