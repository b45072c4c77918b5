#pragma once

#include "tools/common/tooldefinition.h"

#include <vector>

namespace fb::app {

class McpServer;
class ToolContext;

// The tool families, each a list of tool definitions built with the tool kit.
std::vector<ToolDefinition> coreTools();
std::vector<ToolDefinition> codexTools();
std::vector<ToolDefinition> documentTools();
std::vector<ToolDefinition> timelineTools();
std::vector<ToolDefinition> calendarTools();
std::vector<ToolDefinition> spreadsheetTools();
std::vector<ToolDefinition> mapMediaTools();
std::vector<ToolDefinition> sourceTools();
std::vector<ToolDefinition> planningTools();
std::vector<ToolDefinition> languageTools();
std::vector<ToolDefinition> ttrpgTools();
std::vector<ToolDefinition> exportImportTools();

// Each family's registration, in the order the server registers them (the order of
// "tools/list").
void registerMcpCoreTools(McpServer &server, ToolContext &context);
void registerMcpWorldTools(McpServer &server, ToolContext &context);
void registerMcpDocumentTools(McpServer &server, ToolContext &context);
void registerTimelineTools(McpServer &server, ToolContext &context);
void registerCalendarTools(McpServer &server, ToolContext &context);
void registerSpreadsheetTools(McpServer &server, ToolContext &context);
void registerMapMediaTools(McpServer &server, ToolContext &context);
void registerSourceTools(McpServer &server, ToolContext &context);
void registerPlanningTools(McpServer &server, ToolContext &context);
void registerLanguageTools(McpServer &server, ToolContext &context);
void registerTtrpgTools(McpServer &server, ToolContext &context);
void registerExportImportTools(McpServer &server, ToolContext &context);

// Every family in its order; what the server and the tests both register.
void registerAllTools(McpServer &server, ToolContext &context);

// A family as the README presents it.
struct ToolFamily
{
    QString title;
    std::vector<ToolDefinition> tools;
};

// The families in the order registerAllTools() registers them.
std::vector<ToolFamily> toolFamilies();

} // namespace fb::app
