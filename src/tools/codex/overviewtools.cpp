#include "tools/codex/codexfamily.h"

namespace fb::app {

void registerOverviewTools(McpServer &, Workspace &, McpChangeLog &)
{
}

} // namespace fb::app
