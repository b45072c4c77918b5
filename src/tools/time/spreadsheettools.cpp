#include "tools/registration.h"

namespace fb::app {

// Spreadsheets and their formulas.
void registerSpreadsheetTools(McpServer &, Workspace &, McpChangeLog &)
{
}

} // namespace fb::app
