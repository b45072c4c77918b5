#pragma once

namespace fb::app {

class McpChangeLog;
class McpServer;
class Workspace;

// The three groups of the codex family, each registered from its own file.
void registerCategoryTools(McpServer &server, Workspace &workspace, McpChangeLog &log);
void registerEntityTools(McpServer &server, Workspace &workspace, McpChangeLog &log);
void registerOverviewTools(McpServer &server, Workspace &workspace, McpChangeLog &log);

} // namespace fb::app
