#pragma once

#include "server/mcptoolresult.h"
#include "tools/common/toolactions.h"

namespace fb::core {
class Project;
}

namespace fb::app {

class ToolArguments;
class ToolContext;

// The handlers of the timeline tools; timelinetools.cpp registers them.

McpToolResult getTimeline(ToolContext &context, const ToolArguments &arguments);
McpToolResult createTimelineEvent(ToolContext &context, const ToolArguments &arguments);
McpToolResult updateTimelineEvent(ToolContext &context, const ToolArguments &arguments);
McpToolResult manageEras(ToolContext &context, const ToolArguments &arguments);
// The actions of manage_eras, "add" first.
const ToolActionTable<core::Project> &eraActions();

} // namespace fb::app
