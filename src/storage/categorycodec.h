#pragma once

#include "core/result.h"

#include <QJsonObject>
#include <QString>

#include <memory>

namespace fb::core {
class Category;
}

namespace fb::app {

// The stored form of a codex category: "id", "name", "parentId" ("" for a top-level category)
// and "fields", each field {"key", "type", "label", "required", "description", "options"},
// the type by its name ("text", "number", ...).

// Builds the category a stored category file describes; filePath names the file in the errors
// "Malformed category file: %1" (a null id, or no usable name) and "Malformed field in
// category: %1" (a field that is not a JSON object).
Result<std::unique_ptr<core::Category>> categoryFromJson(const QJsonObject &json,
                                                         const QString &filePath);

QJsonObject categoryToJson(const core::Category &category);

} // namespace fb::app
