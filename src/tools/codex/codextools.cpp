#include "tools/codex/codexfamily.h"
#include "tools/registration.h"

#include <iterator>

namespace fb::app {

// The codex: categories and their fields, entities, then the project overview, search and
// review comments, in that order in the tool list.
std::vector<ToolDefinition> codexTools()
{
    std::vector<ToolDefinition> tools = codexCategoryTools();
    for (std::vector<ToolDefinition> group : {codexEntityTools(), codexOverviewTools()})
        tools.insert(tools.end(), std::make_move_iterator(group.begin()),
                     std::make_move_iterator(group.end()));
    return tools;
}

} // namespace fb::app
