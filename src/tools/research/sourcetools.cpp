#include "tools/registration.h"

namespace fb::app {

// Research sources and citations.
void registerSourceTools(McpServer &, Workspace &, McpChangeLog &)
{
}

} // namespace fb::app
