#include "tools/registration.h"

namespace fb::app {

std::vector<ToolDefinition> ttrpgTools()
{
    return {};
}

} // namespace fb::app
