#include "tools/registration.h"

namespace fb::app {

// Maps, media and charts.
void registerMapMediaTools(McpServer &, Workspace &, McpChangeLog &)
{
}

} // namespace fb::app
