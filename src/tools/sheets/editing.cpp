#include "core/commands/command.h"
#include "core/commands/structuralcommands.h"
#include "core/commands/worldcommands.h"
#include "core/formula/a1address.h"
#include "core/formula/sheetevaluator.h"
#include "core/project.h"
#include "core/spreadsheet.h"
#include "storage/workspace.h"
#include "tools/common/change.h"
#include "tools/common/documentlookup.h"
#include "tools/common/objectlookup.h"
#include "tools/common/toolarguments.h"
#include "tools/common/toolcontext.h"
#include "tools/sheets/sheethandlers.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QLocale>
#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

// A new sheet leaves room to grow, since cells can only be set inside the grid: 100 rows and
// the columns A to Z, or more when the header and rows given need more.
constexpr qint32 defaultRowCount = 100;
constexpr qint32 defaultColumnCount = 26;

bool isTitleTaken(const core::Project &project, const QString &title)
{
    // Every sheet counts, excluded ones too: two sheets of one title could no longer be told
    // apart by the title lookup, and the title refused is the agent's own.
    const std::vector<const core::Spreadsheet *> sheets = project.objectsOfType<core::Spreadsheet>();
    return std::any_of(sheets.cbegin(), sheets.cend(), [&](const core::Spreadsheet *sheet) {
        return sameTitle(sheet->title(), title);
    });
}

// The cells that "headers" and "rows" fill: the header row first, then each data row, each
// from column A. Blank values leave the cell blank.
struct Filling
{
    QMap<core::CellAddress, QString> cells;
    qint32 rowCount = 0;
    qint32 columnCount = 0;
};

Result<Filling> readFilling(const ToolArguments &arguments)
{
    QList<QJsonArray> rows;
    if (const QStringList headers = arguments.textList(u"headers"_s); !headers.isEmpty())
        rows.append(QJsonArray::fromStringList(headers));
    rows.append(arguments.table(u"rows"_s));
    qsizetype widest = 0;
    for (const QJsonArray &row : rows)
        widest = std::max(widest, row.size());
    if (rows.size() > core::largestSheetRows || widest > core::largestSheetColumns) {
        return makeError(u"A new spreadsheet holds at most %1 rows and %2 columns; the header "
                         "and rows given need %3 rows and %4 columns."_s
                             .arg(QString::number(core::largestSheetRows),
                                  QString::number(core::largestSheetColumns),
                                  QString::number(rows.size()), QString::number(widest)));
    }
    Filling filling;
    for (qint32 row = 0; row < qint32(rows.size()); ++row) {
        const QJsonArray &values = rows.at(row);
        for (qint32 column = 0; column < qint32(values.size()); ++column) {
            const core::CellAddress address{row, column};
            const Result<QString> text = cellText(core::addressName(address), values.at(column));
            if (!text)
                return makeError(text.error());
            if (!text->isEmpty())
                filling.cells.insert(address, *text);
        }
    }
    filling.rowCount = std::max(defaultRowCount, qint32(rows.size()));
    filling.columnCount = std::max(defaultColumnCount, qint32(widest));
    return filling;
}

// The cells an update sets, by address, read and checked before anything changes.
Result<QMap<core::CellAddress, QString>> readUpdates(const QJsonObject &cells,
                                                     const core::Spreadsheet &sheet)
{
    QMap<core::CellAddress, QString> updates;
    QMap<core::CellAddress, QString> keys;
    for (auto it = cells.constBegin(); it != cells.constEnd(); ++it) {
        const QString key = it.key();
        const std::optional<core::CellAddress> address = core::parseA1Address(key.trimmed());
        if (!address) {
            return makeError(u"'%1' is not an A1-style cell address (e.g. \"B7\")."_s.arg(key));
        }
        if (!core::isInGrid(*address, sheet.rowCount(), sheet.columnCount())) {
            return makeError(u"'%1' is outside the sheet's %2-row x %3-column grid."_s
                                 .arg(key, QString::number(sheet.rowCount()),
                                      QString::number(sheet.columnCount())));
        }
        // "b2" and "B2" are one cell; which of two values was meant cannot be guessed.
        if (keys.contains(*address)) {
            return makeError(
                u"'%1' and '%2' name the same cell; give each cell once."_s.arg(keys.value(*address),
                                                                                key));
        }
        const Result<QString> text = cellText(key, it.value());
        if (!text)
            return makeError(text.error());
        keys.insert(*address, key);
        updates.insert(*address, *text);
    }
    return updates;
}

// " Formulas evaluate to: B9 = 42, C9 = #DIV/0!." for the formulas an update sets, read from
// the sheet as it will be, in reading order.
QString formulaReport(const core::Spreadsheet &sheet,
                      const QMap<core::CellAddress, QString> &updates)
{
    QMap<core::CellAddress, QString> cells = sheet.cells();
    for (auto it = updates.cbegin(); it != updates.cend(); ++it) {
        if (it.value().isEmpty())
            cells.remove(it.key());
        else
            cells.insert(it.key(), it.value());
    }
    core::SheetEvaluator evaluator(sheet.rowCount(), sheet.columnCount(), cells);
    QStringList results;
    for (auto it = updates.cbegin(); it != updates.cend(); ++it) {
        if (core::isFormula(it.value())) {
            results.append(u"%1 = %2"_s.arg(core::addressName(it.key()),
                                            evaluator.value(it.key()).displayText()));
        }
    }
    if (results.isEmpty())
        return QString();
    return u" Formulas evaluate to: %1."_s.arg(results.join(u", "_s));
}

} // namespace

QString spreadsheetNoun()
{
    return u"spreadsheet"_s;
}

QString emptyCellsRefusal()
{
    return u"\"cells\" must map at least one A1-style address to a value (e.g. {\"B2\": "
           "\"=SUM(B3:B9)\"})."_s;
}

Result<QString> cellText(const QString &cell, const QJsonValue &value)
{
    if (value.isString())
        return value.toString();
    if (value.isDouble()) {
        // Adding 0.0 writes negative zero as "0".
        return QString::number(value.toDouble() + 0.0, 'g', QLocale::FloatingPointShortest);
    }
    return makeError(u"The value for '%1' must be a string (a literal, or a formula starting "
                     "with '=') or a number."_s.arg(cell));
}

McpToolResult createSpreadsheet(ToolContext &context, const ToolArguments &arguments)
{
    const QString title = arguments.trimmed(u"title"_s);
    if (title.isEmpty())
        return McpToolResult::failure(u"create_spreadsheet needs a non-empty \"title\"."_s);
    if (const Result<void> line = checkSingleLine(u"title"_s, title); !line)
        return McpToolResult::failure(line.error());
    core::Project &project = context.workspace().project();
    if (isTitleTaken(project, title))
        return McpToolResult::failure(u"A spreadsheet titled '%1' already exists."_s.arg(title));
    Result<Filling> filling = readFilling(arguments);
    if (!filling)
        return McpToolResult::failure(filling.error());

    auto sheet = std::make_unique<core::Spreadsheet>(title);
    sheet->setRowCount(filling->rowCount);
    sheet->setColumnCount(filling->columnCount);
    sheet->setCells(filling->cells);
    const QString text = u"Created the spreadsheet '%1' (%2 rows)."_s.arg(title,
                                                                          QString::number(
                                                                              filling->rowCount));
    auto change = std::make_unique<core::CompositeCommand>(u"MCP: create spreadsheet"_s);
    change->append(std::make_unique<core::AddObjectCommand>(project, std::move(sheet)));
    return applyChange(context, std::move(change), text);
}

McpToolResult updateSpreadsheet(ToolContext &context, const ToolArguments &arguments)
{
    const QString title = arguments.trimmed(u"spreadsheet"_s);
    if (title.isEmpty())
        return McpToolResult::failure(u"update_spreadsheet needs \"spreadsheet\" (its title)."_s);
    const QJsonObject cells = arguments.object(u"cells"_s);
    if (cells.isEmpty())
        return McpToolResult::failure(emptyCellsRefusal());
    const Result<core::Spreadsheet *> found = findByTitle<core::Spreadsheet>(context, title,
                                                                             spreadsheetNoun(),
                                                                             true);
    if (!found)
        return McpToolResult::failure(found.error());
    const core::Spreadsheet &sheet = **found;
    const Result<QMap<core::CellAddress, QString>> updates = readUpdates(cells, sheet);
    if (!updates)
        return McpToolResult::failure(updates.error());

    const QString text = u"Set %1 cell(s) in '%2'."_s.arg(QString::number(updates->size()),
                                                          sheet.title())
                         + formulaReport(sheet, *updates);
    core::Project &project = context.workspace().project();
    auto change = std::make_unique<core::CompositeCommand>(u"MCP: update spreadsheet"_s);
    for (auto it = updates->cbegin(); it != updates->cend(); ++it) {
        if (sheet.cellText(it.key()) != it.value()) {
            change->append(std::make_unique<core::SetSpreadsheetCellCommand>(project, sheet.id(),
                                                                             it.key(), it.value()));
        }
    }
    // Cells that already hold what was asked change nothing: the answer is the same, but no
    // step is made and nothing is logged.
    if (change->isEmpty())
        return McpToolResult::success(text);
    return applyChange(context, std::move(change), text);
}

} // namespace fb::app
