#include "tools/world/worldfamily.h"

namespace fb::app {

std::vector<ToolDefinition> mapTools()
{
    return {};
}

} // namespace fb::app
