#include "tools/analysis/analysisfamily.h"
#include "tools/registration.h"

namespace fb::app {

// The manuscript report first, then content packs and the text extraction of outside files.
std::vector<ToolDefinition> exportImportTools()
{
    std::vector<ToolDefinition> tools = analyticsTools();
    for (ToolDefinition &tool : contentPackTools())
        tools.push_back(std::move(tool));
    return tools;
}

} // namespace fb::app
