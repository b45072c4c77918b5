#include "core/commands/undohistory.h"
#include "support/toolfixture.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

using fb::test::ToolFixture;

namespace {

using Args = QJsonObject;

const QString getSheet = u"get_spreadsheet"_s;
const QString createSheet = u"create_spreadsheet"_s;
const QString updateSheet = u"update_spreadsheet"_s;

QJsonArray row(std::initializer_list<QJsonValue> values)
{
    return QJsonArray(values);
}

class SpreadsheetTools : public ToolFixture
{
protected:
    // A small ledger: a header row, three amounts and a total.
    void createLedger()
    {
        ok(createSheet,
           {{u"title"_s, u"Ledger"_s},
            {u"headers"_s, QJsonArray{u"Item"_s, u"Amount"_s}},
            {u"rows"_s, QJsonArray{row({u"Rope"_s, 12}), row({u"Lantern"_s, 2.5}),
                                   row({u"Oil"_s, u"7"_s}), row({u"Total"_s, u"=SUM(B2:B4)"_s})}}});
    }

    QJsonObject descriptor(const QString &name)
    {
        const QJsonArray tools = m_server->listTools().value("tools"_L1).toArray();
        for (const QJsonValue &tool : tools) {
            if (tool.toObject().value("name"_L1).toString() == name)
                return tool.toObject();
        }
        return {};
    }
};

TEST_F(SpreadsheetTools, PublishesItsToolsAndArguments)
{
    EXPECT_EQ(descriptor(getSheet).value("description"_L1).toString(),
              u"Reads a spreadsheet as a Markdown table of evaluated values (formula cells show "
              "the formula beside the value). Very large sheets are capped honestly."_s);
    EXPECT_EQ(descriptor(createSheet).value("description"_L1).toString(),
              u"Creates a spreadsheet, optionally pre-filled with a header row and data rows. "
              "Cell values may be formulas (\"=SUM(B2:B9)\")."_s);
    EXPECT_EQ(descriptor(updateSheet).value("description"_L1).toString(),
              u"Sets individual cells of a spreadsheet by A1 address. \"cells\" maps addresses "
              "to raw text -- a literal, a formula starting with '=' (evaluated by the real "
              "engine; the result is reported back), or \"\" to clear the cell."_s);
    const QJsonObject create = descriptor(createSheet).value("inputSchema"_L1).toObject();
    EXPECT_EQ(create.value("required"_L1).toArray(), QJsonArray{u"title"_s});
    EXPECT_EQ(create["properties"_L1]["rows"_L1]["items"_L1].toObject(),
              (QJsonObject{{u"type"_s, u"array"_s},
                           {u"items"_s, QJsonObject{{u"type"_s, u"string"_s}}}}));
    const QJsonObject update = descriptor(updateSheet).value("inputSchema"_L1).toObject();
    EXPECT_EQ(update.value("required"_L1).toArray(), (QJsonArray{u"spreadsheet"_s, u"cells"_s}));
    EXPECT_EQ(update["properties"_L1]["cells"_L1]["type"_L1].toString(), u"object"_s);
}

TEST_F(SpreadsheetTools, ShowsEvaluatedValuesWithTheirFormulas)
{
    createLedger();
    EXPECT_EQ(ok(getSheet, {{u"spreadsheet"_s, u" ledger "_s}}),
              u"## Ledger\n"
              "\n"
              "|   | A | B |\n"
              "| - | - | - |\n"
              "| 1 | Item | Amount |\n"
              "| 2 | Rope | 12 |\n"
              "| 3 | Lantern | 2.5 |\n"
              "| 4 | Oil | 7 |\n"
              "| 5 | Total | 21.5 (=SUM(B2:B4)) |"_s);
}

TEST_F(SpreadsheetTools, CreatesSheetsWithRoomToGrow)
{
    struct Case
    {
        const char *name;
        Args arguments;
        const char *created;
        const char *read;
    };
    const QJsonArray wide = QJsonArray::fromStringList(QStringList(30, u"x"_s));
    const Case cases[] = {
        {"no cells",
         {{u"title"_s, u"Blank"_s}},
         "Created the spreadsheet 'Blank' (100 rows).",
         "'Blank' is empty (100 rows x 26 columns)."},
        {"only blank values",
         {{u"title"_s, u"Blanks"_s}, {u"rows"_s, QJsonArray{row({u""_s}), QJsonArray()}}},
         "Created the spreadsheet 'Blanks' (100 rows).",
         "'Blanks' is empty (100 rows x 26 columns)."},
        {"a wide header",
         {{u"title"_s, u"Wide"_s}, {u"headers"_s, wide}},
         "Created the spreadsheet 'Wide' (100 rows).",
         nullptr},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(ok(createSheet, c.arguments), QString::fromUtf8(c.created));
        if (c.read) {
            EXPECT_EQ(ok(getSheet, {{u"spreadsheet"_s, c.arguments.value(u"title"_s)}}),
                      QString::fromUtf8(c.read));
        }
    }
    // 30 header cells need 30 columns, of which the table shows 26.
    EXPECT_TRUE(ok(getSheet, {{u"spreadsheet"_s, u"Wide"_s}})
                    .endsWith(u"\n\nShowing the first 1 of 1 populated rows and 26 of 30 "
                              "columns."_s));

    QJsonArray many;
    for (int i = 0; i < 150; ++i)
        many.append(row({i}));
    EXPECT_EQ(ok(createSheet, {{u"title"_s, u"Long"_s}, {u"rows"_s, many}}),
              u"Created the spreadsheet 'Long' (150 rows)."_s);
    EXPECT_EQ(ok(updateSheet,
                 {{u"spreadsheet"_s, u"Long"_s}, {u"cells"_s, Args{{u"B150"_s, u"=A150*2"_s}}}}),
              u"Set 1 cell(s) in 'Long'. Formulas evaluate to: B150 = 298."_s);
}

TEST_F(SpreadsheetTools, CapsTheTableAt60RowsAndSaysSo)
{
    QJsonArray rows;
    for (int i = 1; i <= 120; ++i)
        rows.append(row({u"Day %1"_s.arg(i), i, u"=B%1*2"_s.arg(i)}));
    ok(createSheet, {{u"title"_s, u"Diary"_s}, {u"rows"_s, rows}});
    const QStringList lines = ok(getSheet, {{u"spreadsheet"_s, u"Diary"_s}}).split(u'\n');
    ASSERT_EQ(lines.size(), 2 + 2 + 60 + 2);
    EXPECT_EQ(lines.at(2), u"|   | A | B | C |"_s);
    EXPECT_EQ(lines.at(4), u"| 1 | Day 1 | 1 | 2 (=B1*2) |"_s);
    EXPECT_EQ(lines.at(63), u"| 60 | Day 60 | 60 | 120 (=B60*2) |"_s);
    EXPECT_EQ(lines.at(64), QString());
    EXPECT_EQ(lines.at(65), u"Showing the first 60 of 120 populated rows and 3 of 3 columns."_s);
}

TEST_F(SpreadsheetTools, KeepsTheTableIntactAroundPipesLineBreaksAndErrors)
{
    ok(createSheet, {{u"title"_s, u"Odd"_s},
                     {u"rows"_s, QJsonArray{row({u"a|b"_s, u"line\nbreak"_s, u"=B1"_s}),
                                            row({u"=C1"_s, u"=1/0"_s, u"=\"\""_s})}}});
    EXPECT_EQ(ok(getSheet, {{u"spreadsheet"_s, u"Odd"_s}}),
              u"## Odd\n\n|   | A | B | C |\n| - | - | - | - |\n"
              "| 1 | a\\|b | line<br>break | line<br>break (=B1) |\n"
              "| 2 | line<br>break (=C1) | #DIV/0! (=1/0) | (=\"\") |"_s);
}

TEST_F(SpreadsheetTools, RefusesBadCreations)
{
    createLedger();
    const QJsonArray tooMany = QJsonArray::fromVariantList(QVariantList(1001, u"1"_s));
    QJsonArray tallRows;
    for (const QJsonValue &value : tooMany)
        tallRows.append(row({value}));
    struct Case
    {
        const char *name;
        Args arguments;
        const char *message;
    };
    const Case cases[] = {
        {"no title", {}, "create_spreadsheet needs a non-empty \"title\"."},
        {"a blank title",
         {{u"title"_s, u"  "_s}},
         "create_spreadsheet needs a non-empty \"title\"."},
        {"two lines",
         {{u"title"_s, u"Two\nlines"_s}},
         "\"title\" must be a single line: a title or name cannot hold a line break."},
        {"a taken title",
         {{u"title"_s, u" LEDGER "_s}},
         "A spreadsheet titled 'LEDGER' already exists."},
        {"a boolean cell",
         {{u"title"_s, u"New"_s}, {u"rows"_s, QJsonArray{row({1, true})}}},
         "The value for 'B1' must be a string (a literal, or a formula starting with '=') or a "
         "number."},
        {"an object cell below headers",
         {{u"title"_s, u"New"_s},
          {u"headers"_s, QJsonArray{u"A"_s}},
          {u"rows"_s, QJsonArray{row({1}), row({QJsonObject()})}}},
         "The value for 'A3' must be a string (a literal, or a formula starting with '=') or a "
         "number."},
        {"a null cell",
         {{u"title"_s, u"New"_s}, {u"rows"_s, QJsonArray{row({QJsonValue()})}}},
         "The value for 'A1' must be a string (a literal, or a formula starting with '=') or a "
         "number."},
        {"a row that is not an array",
         {{u"title"_s, u"New"_s}, {u"rows"_s, QJsonArray{1}}},
         "\"rows\" must be an array of arrays."},
        {"a numeric header",
         {{u"title"_s, u"New"_s}, {u"headers"_s, QJsonArray{1}}},
         "\"headers\" must be an array of strings."},
        {"too many rows",
         {{u"title"_s, u"New"_s}, {u"rows"_s, tallRows}},
         "A new spreadsheet holds at most 1000 rows and 100 columns; the header and rows given "
         "need 1001 rows and 1 columns."},
        {"too many columns",
         {{u"title"_s, u"New"_s},
          {u"headers"_s, QJsonArray::fromStringList(QStringList(101, u"h"_s))}},
         "A new spreadsheet holds at most 1000 rows and 100 columns; the header and rows given "
         "need 1 rows and 101 columns."},
    };
    const auto before = files();
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(fails(createSheet, c.arguments), QString::fromUtf8(c.message));
    }
    EXPECT_EQ(files(), before);
    EXPECT_EQ(ok(u"get_recent_changes"_s), u"Created the spreadsheet 'Ledger' (100 rows)."_s);
}

TEST_F(SpreadsheetTools, SetsCellsAndReportsWhatTheFormulasGive)
{
    createLedger();
    EXPECT_EQ(ok(updateSheet, {{u"spreadsheet"_s, u"ledger"_s},
                               {u"cells"_s, Args{{u"b3"_s, 4},
                                                 {u"C5"_s, u"=B5/0"_s},
                                                 {u"A4"_s, u""_s},
                                                 {u" $C$2 "_s, u"=B2*2"_s},
                                                 {u"D2"_s, u"=D2"_s}}}}),
              u"Set 5 cell(s) in 'Ledger'. Formulas evaluate to: C2 = 24, D2 = #CIRC!, "
              "C5 = #DIV/0!."_s);
    EXPECT_EQ(ok(updateSheet,
                 {{u"spreadsheet"_s, u"Ledger"_s}, {u"cells"_s, Args{{u"A6"_s, u"Note"_s}}}}),
              u"Set 1 cell(s) in 'Ledger'."_s);
    EXPECT_EQ(ok(getSheet, {{u"spreadsheet"_s, u"Ledger"_s}}),
              u"## Ledger\n\n|   | A | B | C | D |\n| - | - | - | - | - |\n"
              "| 1 | Item | Amount | - | - |\n"
              "| 2 | Rope | 12 | 24 (=B2*2) | #CIRC! (=D2) |\n"
              "| 3 | Lantern | 4 | - | - |\n"
              "| 4 | - | 7 | - | - |\n"
              "| 5 | Total | 23 (=SUM(B2:B4)) | #DIV/0! (=B5/0) | - |\n"
              "| 6 | Note | - | - | - |"_s);
    EXPECT_EQ(workspace().undoHistory().undoLabel(), u"MCP: update spreadsheet"_s);
}

TEST_F(SpreadsheetTools, RefusesBadUpdatesWithoutChangingAnyCell)
{
    createLedger();
    const QString mustMap = u"\"cells\" must map at least one A1-style address to a value (e.g. "
                            "{\"B2\": \"=SUM(B3:B9)\"})."_s;
    struct Case
    {
        const char *name;
        Args arguments;
        QString message;
    };
    const auto withCells = [](const Args &cells) {
        return Args{{u"spreadsheet"_s, u"Ledger"_s}, {u"cells"_s, cells}};
    };
    const Case cases[] = {
        {"no sheet",
         {{u"cells"_s, Args{{u"A1"_s, u"x"_s}}}},
         u"update_spreadsheet needs \"spreadsheet\" (its title)."_s},
        {"no cells", {{u"spreadsheet"_s, u"Ledger"_s}}, mustMap},
        {"empty cells", withCells({}), mustMap},
        {"cells as a string", {{u"spreadsheet"_s, u"Ledger"_s}, {u"cells"_s, u"A1=5"_s}}, mustMap},
        {"an unknown sheet",
         {{u"spreadsheet"_s, u"Budget"_s}, {u"cells"_s, Args{{u"A1"_s, u"x"_s}}}},
         u"No spreadsheet named 'Budget' exists."_s},
        {"not an address", withCells({{u"A1"_s, u"x"_s}, {u"Total"_s, u"y"_s}}),
         u"'Total' is not an A1-style cell address (e.g. \"B7\")."_s},
        {"row zero", withCells({{u"A0"_s, u"x"_s}}),
         u"'A0' is not an A1-style cell address (e.g. \"B7\")."_s},
        {"below the grid", withCells({{u"A1"_s, u"x"_s}, {u"A101"_s, u"y"_s}}),
         u"'A101' is outside the sheet's 100-row x 26-column grid."_s},
        {"right of the grid", withCells({{u"AA1"_s, u"y"_s}}),
         u"'AA1' is outside the sheet's 100-row x 26-column grid."_s},
        {"a boolean value", withCells({{u"A1"_s, u"x"_s}, {u"B2"_s, true}}),
         u"The value for 'B2' must be a string (a literal, or a formula starting with '=') or a "
         "number."_s},
        {"an array value", withCells({{u"C3"_s, QJsonArray{1}}}),
         u"The value for 'C3' must be a string (a literal, or a formula starting with '=') or a "
         "number."_s},
        {"one cell twice", withCells({{u"B2"_s, u"1"_s}, {u"b2"_s, u"2"_s}}),
         u"'B2' and 'b2' name the same cell; give each cell once."_s},
    };
    const auto before = files();
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(fails(updateSheet, c.arguments), c.message);
        EXPECT_EQ(files(), before);
    }
    EXPECT_EQ(ok(u"get_recent_changes"_s), u"Created the spreadsheet 'Ledger' (100 rows)."_s);
}

TEST_F(SpreadsheetTools, UndoesCreationsAndUpdatesByteForByte)
{
    const auto empty = files();
    createLedger();
    EXPECT_EQ(workspace().undoHistory().undoLabel(), u"MCP: create spreadsheet"_s);
    const auto created = files();
    ok(updateSheet, {{u"spreadsheet"_s, u"Ledger"_s},
                     {u"cells"_s, Args{{u"A1"_s, u"Thing"_s}, {u"B5"_s, u""_s}}}});
    EXPECT_NE(files(), created);
    EXPECT_EQ(ok(u"undo_last"_s), u"Undid the last change."_s);
    EXPECT_EQ(files(), created);
    EXPECT_EQ(ok(u"undo_last"_s), u"Undid the last change."_s);
    EXPECT_EQ(files(), empty);
    EXPECT_EQ(fails(getSheet, {{u"spreadsheet"_s, u"Ledger"_s}}),
              u"No spreadsheet named 'Ledger' exists."_s);
}

TEST_F(SpreadsheetTools, AnswersAnUpdateThatChangesNothingWithoutAStep)
{
    createLedger();
    const auto before = files();
    EXPECT_EQ(ok(updateSheet, {{u"spreadsheet"_s, u"Ledger"_s},
                               {u"cells"_s, Args{{u"B2"_s, 12}, {u"B5"_s, u"=SUM(B2:B4)"_s}}}}),
              u"Set 2 cell(s) in 'Ledger'. Formulas evaluate to: B5 = 21.5."_s);
    EXPECT_EQ(files(), before);
    EXPECT_EQ(workspace().undoHistory().count(), 1u);
    EXPECT_EQ(ok(u"get_recent_changes"_s), u"Created the spreadsheet 'Ledger' (100 rows)."_s);
}

TEST_F(SpreadsheetTools, RefusesToReadAMissingTitle)
{
    EXPECT_EQ(fails(getSheet), u"get_spreadsheet needs \"spreadsheet\" (its title)."_s);
    EXPECT_EQ(fails(getSheet, {{u"spreadsheet"_s, u" "_s}}),
              u"get_spreadsheet needs \"spreadsheet\" (its title)."_s);
    EXPECT_EQ(fails(getSheet, {{u"spreadsheet"_s, u"Ledger"_s}}),
              u"No spreadsheet named 'Ledger' exists."_s);
}

// "Ship Ledger" in this project is excluded from AI: it is never read or changed, and its
// cells never show.
class ExcludedSpreadsheet : public ToolFixture
{
protected:
    ExcludedSpreadsheet()
        : ToolFixture(u"projects/everything"_s)
    {}
};

TEST_F(ExcludedSpreadsheet, IsNeitherReadNorChanged)
{
    const auto before = files();
    EXPECT_EQ(fails(getSheet, {{u"spreadsheet"_s, u"Ship Ledger"_s}}),
              u"No spreadsheet named 'Ship Ledger' exists."_s);
    EXPECT_EQ(fails(updateSheet,
                    {{u"spreadsheet"_s, u"ship ledger"_s}, {u"cells"_s, Args{{u"A1"_s, u"x"_s}}}}),
              u"'ship ledger' is excluded from AI and cannot be changed."_s);
    EXPECT_EQ(fails(createSheet, {{u"title"_s, u"Ship Ledger"_s}}),
              u"A spreadsheet titled 'Ship Ledger' already exists."_s);
    EXPECT_EQ(files(), before);
}

} // namespace
