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

void registerTimelineTools(McpServer &server, ToolContext &context)
{
    registerTools(server, context, timelineTools());
}

void registerCalendarTools(McpServer &server, ToolContext &context)
{
    registerTools(server, context, calendarTools());
}

void registerSpreadsheetTools(McpServer &server, ToolContext &context)
{
    registerTools(server, context, spreadsheetTools());
}

void registerMapMediaTools(McpServer &server, ToolContext &context)
{
    registerTools(server, context, mapMediaTools());
}

void registerSourceTools(McpServer &server, ToolContext &context)
{
    registerTools(server, context, sourceTools());
}

void registerPlanningTools(McpServer &server, ToolContext &context)
{
    registerTools(server, context, planningTools());
}

void registerLanguageTools(McpServer &server, ToolContext &context)
{
    registerTools(server, context, languageTools());
}

// Dice, random tables and encounters, then stat blocks.
void registerTtrpgTools(McpServer &server, ToolContext &context)
{
    registerTools(server, context, ttrpgTools());
}

void registerExportImportTools(McpServer &server, ToolContext &context)
{
    registerTools(server, context, exportImportTools());
}

// The families come in a fixed order: core, codex, documents, timelines, the calendar,
// spreadsheets, maps and media, sources, planning, languages, game material, then analysis,
// exports and imports. A family joins this list at its place.
void registerAllTools(McpServer &server, ToolContext &context)
{
    registerMcpCoreTools(server, context);
    registerMcpWorldTools(server, context);
    registerMcpDocumentTools(server, context);
    registerTimelineTools(server, context);
    registerCalendarTools(server, context);
    registerSpreadsheetTools(server, context);
    registerMapMediaTools(server, context);
    registerSourceTools(server, context);
    registerPlanningTools(server, context);
    registerLanguageTools(server, context);
    registerTtrpgTools(server, context);
    registerExportImportTools(server, context);
}

std::vector<ToolFamily> toolFamilies()
{
    return {
        {u"Project"_s, coreTools()},
        {u"Codex"_s, codexTools()},
        {u"Manuscript"_s, documentTools()},
        {u"Timelines and eras"_s, timelineTools()},
        {u"Story calendar"_s, calendarTools()},
        {u"Spreadsheets"_s, spreadsheetTools()},
        {u"Maps, media and charts"_s, mapMediaTools()},
        {u"Research sources"_s, sourceTools()},
        {u"Planning"_s, planningTools()},
        {u"Constructed languages"_s, languageTools()},
        {u"Game material"_s, ttrpgTools()},
        {u"Analysis, packs and extraction"_s, exportImportTools()},
    };
}

} // namespace fb::app
