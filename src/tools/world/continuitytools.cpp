#include "tools/world/worldfamily.h"

namespace fb::app {

std::vector<ToolDefinition> continuityTools()
{
    return {};
}

} // namespace fb::app
