#include "tools/registration.h"

namespace fb::app {

// Timelines, events and eras.
void registerTimelineTools(McpServer &, Workspace &, McpChangeLog &)
{
}

} // namespace fb::app
