#include "tools/registration.h"
#include "tools/world/worldfamily.h"

namespace fb::app {

// Maps and travel first, then media items and charts.
std::vector<ToolDefinition> mapMediaTools()
{
    std::vector<ToolDefinition> tools = mapTools();
    for (ToolDefinition &tool : mediaTools())
        tools.push_back(std::move(tool));
    return tools;
}

} // namespace fb::app
