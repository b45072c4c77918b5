#include "tools/registration.h"

namespace fb::app {

// The codex: categories and fields, entities, the overview, search and comments.
void registerMcpWorldTools(McpServer &, Workspace &, McpChangeLog &)
{
}

} // namespace fb::app
