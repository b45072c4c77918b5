#include "tools/registration.h"

namespace fb::app {

std::vector<ToolDefinition> languageTools()
{
    return {};
}

} // namespace fb::app
