#include "tools/registration.h"

#include "tools/codex/codexfamily.h"

namespace fb::app {

// The codex: categories and their fields, entities, then the project overview, search and
// review comments, in that order in the tool list.
void registerMcpWorldTools(McpServer &server, Workspace &workspace, McpChangeLog &log)
{
    registerCategoryTools(server, workspace, log);
    registerEntityTools(server, workspace, log);
    registerOverviewTools(server, workspace, log);
}

} // namespace fb::app
