#pragma once

#include "core/result.h"

#include <QJsonObject>
#include <QString>

#include <memory>

namespace fb::core {
class ContentObject;
}

namespace fb::app {

// The stored form of a content object: one JSON object per file with the common keys "id",
// "type", "visibleTo", "tags" and "aiExcluded" and the keys of its type.
//
// Stored forms the desktop application's files leave open, chosen once here:
// - A null id is written as "" and an invalid calendar date or date-time as ""; an absent
//   story instant ("sceneInstant", "birthInstant", "deathInstant", a continuity rule's
//   "instant") leaves its key out.
// - Document footnotes {"id", "text", "endnote"}, versions {"label", "createdAt", "body"},
//   variants {"name", "body"}.
// - Entity timed values {"fieldKey", "instant", "value"}.
// - Spreadsheet "cells" {"row", "column", "text"}; "formats" {"row", "column"} plus the cell
//   format keys; "columnWidths" and "rowHeights" {"index", "size"}.
// - Chart "kind": "bar", "line", "area", "pie" or "scatter"; series {"name", "values"}.
// - Map positions as "x" and "y" fractions: pins {"label", "note", "x", "y"}, region "points"
//   [{"x", "y"}], tokens {"label", "color", "entityId", "x", "y"}; routes also keep "note";
//   "gridKind" "none" or "square"; the grid colour is "gridColor".
// - Timeline {"title", "description", "sortIndex"}.
// - Event constraint "kind" and "dateQualifier", media "kind" and "crop" are kept as stored;
//   "crop" is left out when the item has none.
// - Source "sourceType": the kind token ("book", "article-journal", ...).
// - Task "priority" and submission "kind": their names ("normal", "agent", ...).
// - Canvas cards {"id", "objectId", "x", "y", "width", "height"}, connections {"fromCardId",
//   "toCardId", "label"}.
// - Category fields are named by "key"; entity templates and mounts by "name"; plot threads
//   carry their "id".
// Map features, media annotations, canvas cards and connections keep the members this version
// does not know, like the top level of every file.

// Builds the object a stored object file describes; filePath names the file in the error,
// "Malformed object file: %1", given for an unknown type name or a null id.
Result<std::unique_ptr<core::ContentObject>> objectFromJson(const QJsonObject &json,
                                                            const QString &filePath);

// The stored form of an object: the keys it keeps from its file, then every key this version
// knows.
QJsonObject objectToJson(const core::ContentObject &object);

} // namespace fb::app
