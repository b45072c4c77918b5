#include "tools/registration.h"

namespace fb::app {

std::vector<ToolDefinition> sourceTools()
{
    return {};
}

} // namespace fb::app
