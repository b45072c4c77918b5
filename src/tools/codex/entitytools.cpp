#include "tools/codex/codexfamily.h"

namespace fb::app {

void registerEntityTools(McpServer &, Workspace &, McpChangeLog &)
{
}

} // namespace fb::app
