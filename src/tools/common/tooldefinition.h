#pragma once

#include "server/mcptoolresult.h"
#include "tools/common/toolarguments.h"

#include <QList>
#include <QString>

#include <functional>
#include <vector>

namespace fb::app {

class McpServer;
class ToolContext;

using ToolHandler
    = std::function<McpToolResult(ToolContext &context, const ToolArguments &arguments)>;

// One tool: its name and description as "tools/list" shows them, the arguments it takes, and
// the handler that runs it. A tool family is a list of these.
struct ToolDefinition
{
    QString name;
    QString description;
    QList<ArgumentDeclaration> arguments;
    ToolHandler handler;
};

// Registers a family's tools in their order. Each call's arguments are checked against the
// declarations before the handler runs; a value of the wrong type is refused, naming the
// argument and the form it must take.
void registerTools(McpServer &server, ToolContext &context,
                   const std::vector<ToolDefinition> &tools);

} // namespace fb::app
