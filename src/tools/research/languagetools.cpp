#include "tools/registration.h"

namespace fb::app {

// Constructed languages.
void registerLanguageTools(McpServer &, Workspace &, McpChangeLog &)
{
}

} // namespace fb::app
