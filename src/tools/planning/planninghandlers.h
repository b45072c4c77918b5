#pragma once

#include "server/mcptoolresult.h"

namespace fb::app {

class ToolArguments;
class ToolContext;

// The handlers of the planning tools; planningtools.cpp lists them.

// Tasks on kanban boards (tasks.cpp).
McpToolResult listTasks(ToolContext &context, const ToolArguments &arguments);
McpToolResult createTask(ToolContext &context, const ToolArguments &arguments);
McpToolResult updateTask(ToolContext &context, const ToolArguments &arguments);

// Plot threads, character arcs and the scenes tagged with them (plotthreads.cpp).
McpToolResult listPlotThreads(ToolContext &context, const ToolArguments &arguments);
McpToolResult createPlotThread(ToolContext &context, const ToolArguments &arguments);
McpToolResult updatePlotThread(ToolContext &context, const ToolArguments &arguments);
McpToolResult setDocumentThreads(ToolContext &context, const ToolArguments &arguments);
McpToolResult deletePlotThread(ToolContext &context, const ToolArguments &arguments);

// The beat sheet (beatsheet.cpp).
McpToolResult getBeatSheet(ToolContext &context, const ToolArguments &arguments);
McpToolResult applyBeatTemplate(ToolContext &context, const ToolArguments &arguments);
McpToolResult assignBeat(ToolContext &context, const ToolArguments &arguments);

// The refusals a tool gives for a missing or malformed argument in its own words; the kit
// gives them for a value of the wrong JSON type too.
QString createTaskNeedsTitle();
QString updateTaskNeedsTask();
QString nonEmptyNewTitle();
QString nonEmptyStatus();
QString doneMustBeBoolean();
QString createThreadNeedsName();
QString updateThreadNeedsThread();
QString nonEmptyNewName();
QString setThreadsNeedsDocument();
QString setThreadsNeedsThreads();
QString deleteThreadNeedsThread();
QString applyTemplateNeedsTemplate();
QString assignBeatNeedsBeat();

} // namespace fb::app
