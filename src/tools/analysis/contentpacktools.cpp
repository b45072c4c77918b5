#include "tools/analysis/analysisfamily.h"

namespace fb::app {

std::vector<ToolDefinition> contentPackTools()
{
    return {};
}

} // namespace fb::app
