#pragma once

#include "server/mcptoolresult.h"

namespace fb::app {

class ToolArguments;
class ToolContext;

// The handlers of the overview, search and comment tools; overviewtools.cpp lists them.

McpToolResult getProjectOverview(ToolContext &context, const ToolArguments &arguments);
McpToolResult searchProject(ToolContext &context, const ToolArguments &arguments);

McpToolResult addComment(ToolContext &context, const ToolArguments &arguments);
McpToolResult listComments(ToolContext &context, const ToolArguments &arguments);
McpToolResult replyComment(ToolContext &context, const ToolArguments &arguments);
McpToolResult resolveComment(ToolContext &context, const ToolArguments &arguments);

} // namespace fb::app
