#include "tools/registration.h"

namespace fb::app {

// Manuscript analytics, content packs, text extraction, exporters and importers.
void registerExportImportTools(McpServer &, Workspace &, McpChangeLog &)
{
}

} // namespace fb::app
