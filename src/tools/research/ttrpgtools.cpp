#include "tools/registration.h"

namespace fb::app {

// Dice, random tables, encounters and stat blocks.
void registerTtrpgTools(McpServer &, Workspace &, McpChangeLog &)
{
}

} // namespace fb::app
