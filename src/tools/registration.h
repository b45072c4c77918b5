#pragma once

namespace fb::app {

class McpChangeLog;
class McpServer;
class Workspace;

// The tool families, in the order the server registers them (the order of "tools/list").
void registerMcpCoreTools(McpServer &server, Workspace &workspace, McpChangeLog &log);
void registerMcpWorldTools(McpServer &server, Workspace &workspace, McpChangeLog &log);
void registerMcpDocumentTools(McpServer &server, Workspace &workspace, McpChangeLog &log);
void registerTimelineTools(McpServer &server, Workspace &workspace, McpChangeLog &log);
void registerCalendarTools(McpServer &server, Workspace &workspace, McpChangeLog &log);
void registerSpreadsheetTools(McpServer &server, Workspace &workspace, McpChangeLog &log);
void registerMapMediaTools(McpServer &server, Workspace &workspace, McpChangeLog &log);
void registerSourceTools(McpServer &server, Workspace &workspace, McpChangeLog &log);
void registerPlanningTools(McpServer &server, Workspace &workspace, McpChangeLog &log);
void registerLanguageTools(McpServer &server, Workspace &workspace, McpChangeLog &log);
void registerTtrpgTools(McpServer &server, Workspace &workspace, McpChangeLog &log);
void registerExportImportTools(McpServer &server, Workspace &workspace, McpChangeLog &log);

} // namespace fb::app
