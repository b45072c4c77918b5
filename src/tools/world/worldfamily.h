#pragma once

#include "tools/common/tooldefinition.h"

#include <vector>

namespace fb::app {

// The world-data tools: the continuity checks, which the timeline family lists after its own
// tools, and the maps, media and charts of their own family.
std::vector<ToolDefinition> continuityTools();
std::vector<ToolDefinition> mapTools();
std::vector<ToolDefinition> mediaTools();

} // namespace fb::app
