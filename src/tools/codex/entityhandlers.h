#pragma once

#include "server/mcptoolresult.h"

namespace fb::app {

class ToolArguments;
class ToolContext;

// The handlers of the entity tools; entitytools.cpp lists them.

McpToolResult getEntity(ToolContext &context, const ToolArguments &arguments);

McpToolResult createEntity(ToolContext &context, const ToolArguments &arguments);
McpToolResult updateEntity(ToolContext &context, const ToolArguments &arguments);

McpToolResult deleteObject(ToolContext &context, const ToolArguments &arguments);
McpToolResult mergeEntities(ToolContext &context, const ToolArguments &arguments);
McpToolResult splitEntity(ToolContext &context, const ToolArguments &arguments);

McpToolResult setVisibility(ToolContext &context, const ToolArguments &arguments);
// Said when "audiences" is missing or not an array of names.
QString missingAudiences();
McpToolResult setAiExclusion(ToolContext &context, const ToolArguments &arguments);
// Said when "excluded" is missing or not true or false.
QString missingExclusion();

} // namespace fb::app
