#include "tools/registration.h"

namespace fb::app {

// Tasks on boards, plot threads and beat sheets.
void registerPlanningTools(McpServer &, Workspace &, McpChangeLog &)
{
}

} // namespace fb::app
