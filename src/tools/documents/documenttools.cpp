#include "tools/registration.h"

namespace fb::app {

// The manuscript: reading, editing, find and replace, footnotes, versions and variants.
void registerMcpDocumentTools(McpServer &, Workspace &, McpChangeLog &)
{
}

} // namespace fb::app
