#include "tools/registration.h"

#include "tools/common/toolcontext.h"

using namespace Qt::StringLiterals;

namespace fb::app {

void registerMcpCoreTools(McpServer &server, ToolContext &context)
{
    registerTools(server, context, coreTools());
}

// The codex: categories and their fields, entities, then the project overview, search and
// review comments.
void registerMcpWorldTools(McpServer &server, ToolContext &context)
{
    registerTools(server, context, codexTools());
}

void registerMcpDocumentTools(McpServer &server, ToolContext &context)
{
    registerTools(server, context, documentTools());
}

void registerCalendarTools(McpServer &server, ToolContext &context)
{
    registerTools(server, context, calendarTools());
}

// The families come in a fixed order: core, codex, documents, timelines, the calendar,
// spreadsheets, maps and media, sources, planning, languages, game material, then analysis,
// exports and imports. A family joins this list at its place.
void registerAllTools(McpServer &server, ToolContext &context)
{
    registerMcpCoreTools(server, context);
    registerMcpWorldTools(server, context);
    registerMcpDocumentTools(server, context);
    registerCalendarTools(server, context);
}

std::vector<ToolFamily> toolFamilies()
{
    return {
        {u"Project"_s, coreTools()},
        {u"Codex"_s, codexTools()},
        {u"Manuscript"_s, documentTools()},
        {u"Story calendar"_s, calendarTools()},
    };
}

} // namespace fb::app
