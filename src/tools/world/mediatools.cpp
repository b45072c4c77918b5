#include "tools/world/worldfamily.h"

namespace fb::app {

std::vector<ToolDefinition> mediaTools()
{
    return {};
}

} // namespace fb::app
