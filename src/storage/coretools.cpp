#include "tools/registration.h"

namespace fb::app {

void registerMcpCoreTools(McpServer &, Workspace &, McpChangeLog &)
{
}

} // namespace fb::app
