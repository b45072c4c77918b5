#pragma once

#include "tools/common/tooldefinition.h"

#include <vector>

namespace fb::app {

// The parts of the analysis family, in the order the family lists them.
std::vector<ToolDefinition> analyticsTools();
std::vector<ToolDefinition> contentPackTools();

} // namespace fb::app
