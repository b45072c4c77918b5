#include "tools/analysis/analysisfamily.h"

namespace fb::app {

std::vector<ToolDefinition> analyticsTools()
{
    return {};
}

} // namespace fb::app
