#pragma once

// The spreadsheet tools' handlers and the texts they share; the table of the family is in
// spreadsheettools.cpp.

#include "core/result.h"
#include "server/mcptoolresult.h"

#include <QJsonValue>
#include <QString>

namespace fb::app {

class ToolArguments;
class ToolContext;

McpToolResult getSpreadsheet(ToolContext &context, const ToolArguments &arguments);
McpToolResult createSpreadsheet(ToolContext &context, const ToolArguments &arguments);
McpToolResult updateSpreadsheet(ToolContext &context, const ToolArguments &arguments);

// The refusal for a "cells" argument that names no cell, or is not an object.
QString emptyCellsRefusal();

// The noun the title lookup puts into its messages.
QString spreadsheetNoun();

// The raw text a JSON cell value stands for. A string is the raw text itself; a number, which
// is what a user means by {"B2": 5}, becomes its shortest text. Anything else is refused with
// a sentence naming the cell (`cell`, as the agent wrote it or as an A1 address).
Result<QString> cellText(const QString &cell, const QJsonValue &value);

} // namespace fb::app
