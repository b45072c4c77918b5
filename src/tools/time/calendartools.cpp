#include "tools/registration.h"

namespace fb::app {

// The story calendar.
void registerCalendarTools(McpServer &, Workspace &, McpChangeLog &)
{
}

} // namespace fb::app
