#pragma once

#include "tools/common/tooldefinition.h"

#include <vector>

namespace fb::app {

// The three groups of the codex family, each defined in its own file, in the order codexTools()
// lists them.
std::vector<ToolDefinition> codexCategoryTools();
std::vector<ToolDefinition> codexEntityTools();
std::vector<ToolDefinition> codexOverviewTools();

} // namespace fb::app
