#include "tools/registration.h"
#include "tools/sheets/sheethandlers.h"

using namespace Qt::StringLiterals;

namespace fb::app {

// Spreadsheets: reading one as a table of evaluated values, creating one, and setting cells.
std::vector<ToolDefinition> spreadsheetTools()
{
    return {
        {u"get_spreadsheet"_s,
         u"Reads a spreadsheet as a Markdown table of evaluated values (formula cells show the "
         "formula beside the value). Very large sheets are capped honestly."_s,
         {requiredText(u"spreadsheet"_s, u"The spreadsheet's title (case-insensitive)."_s)},
         getSpreadsheet},
        {u"create_spreadsheet"_s,
         u"Creates a spreadsheet, optionally pre-filled with a header row and data rows. Cell "
         "values may be formulas (\"=SUM(B2:B9)\")."_s,
         {requiredText(u"title"_s, u"The new spreadsheet's title (must be unique)."_s),
          optionalTextList(u"headers"_s, u"The header row, written into row 1."_s),
          optionalTable(u"rows"_s,
                        u"Data rows below the header row (from row 1 without one): each row an "
                        "array of cell values, left to right from column A. A value is a "
                        "literal, a formula starting with '=', or a number."_s)},
         createSpreadsheet},
        {u"update_spreadsheet"_s,
         u"Sets individual cells of a spreadsheet by A1 address. \"cells\" maps addresses to "
         "raw text -- a literal, a formula starting with '=' (evaluated by the real engine; the "
         "result is reported back), or \"\" to clear the cell."_s,
         {requiredText(u"spreadsheet"_s, u"The spreadsheet's title (case-insensitive)."_s),
          withTypeRefusal(requiredObject(u"cells"_s,
                                         u"A1 address to new raw text, e.g. {\"B2\": "
                                         "\"=SUM(B3:B9)\", \"A2\": \"Total\"}; \"\" clears "
                                         "a cell. Numbers are taken as their text."_s),
                          emptyCellsRefusal())},
         updateSpreadsheet},
    };
}

} // namespace fb::app
