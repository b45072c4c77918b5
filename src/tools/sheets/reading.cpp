#include "core/formula/a1address.h"
#include "core/formula/sheetevaluator.h"
#include "core/spreadsheet.h"
#include "tools/common/objectlookup.h"
#include "tools/common/toolarguments.h"
#include "tools/common/toolcontext.h"
#include "tools/sheets/sheethandlers.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

// The most a table shows; the populated extent beyond it is reported, not silently cut.
constexpr qint32 shownRowLimit = 60;
constexpr qint32 shownColumnLimit = 26;

// A cell's text made safe inside a Markdown table row: a pipe would end the cell and a line
// break the row.
QString tableCell(const QString &text)
{
    QString cell = text;
    cell.replace(u'|', u"\\|"_s);
    cell.replace(u"\r\n"_s, u"<br>"_s);
    cell.replace(u'\n', u"<br>"_s);
    cell.replace(u'\r', u"<br>"_s);
    return cell;
}

// What one table cell shows: "-" for a blank cell, the value for a literal, and for a formula
// its value followed by the formula in parentheses ("7 (=1+2*3)"), so that the agent sees both
// what the sheet shows and what to edit.
QString shownCell(const core::Spreadsheet &sheet, core::SheetEvaluator &evaluator,
                  core::CellAddress address)
{
    const QString raw = sheet.cellText(address);
    if (raw.isEmpty())
        return u"-"_s;
    const QString value = evaluator.value(address).displayText();
    if (!core::isFormula(raw))
        return tableCell(value);
    const QString formula = u"(%1)"_s.arg(raw);
    return tableCell(value.isEmpty() ? formula : value + u' ' + formula);
}

} // namespace

McpToolResult getSpreadsheet(ToolContext &context, const ToolArguments &arguments)
{
    const QString title = arguments.trimmed(u"spreadsheet"_s);
    if (title.isEmpty())
        return McpToolResult::failure(u"get_spreadsheet needs \"spreadsheet\" (its title)."_s);
    const Result<core::Spreadsheet *> found = findByTitle<core::Spreadsheet>(context, title,
                                                                             spreadsheetNoun(),
                                                                             false);
    if (!found)
        return McpToolResult::failure(found.error());
    const core::Spreadsheet &sheet = **found;

    // The populated extent: from A1 to the last row and the last column that hold something
    // inside the grid. Cells stored beyond the grid cannot be addressed and are not shown.
    qint32 rowExtent = 0;
    qint32 columnExtent = 0;
    const QMap<core::CellAddress, QString> &cells = sheet.cells();
    for (auto it = cells.cbegin(); it != cells.cend(); ++it) {
        if (it.value().isEmpty() || !core::isInGrid(it.key(), sheet.rowCount(), sheet.columnCount()))
            continue;
        rowExtent = std::max(rowExtent, it.key().row + 1);
        columnExtent = std::max(columnExtent, it.key().column + 1);
    }
    if (rowExtent == 0) {
        return McpToolResult::success(
            u"'%1' is empty (%2 rows x %3 columns)."_s.arg(sheet.title(),
                                                           QString::number(sheet.rowCount()),
                                                           QString::number(sheet.columnCount())));
    }

    const qint32 shownRows = std::min(rowExtent, shownRowLimit);
    const qint32 shownColumns = std::min(columnExtent, shownColumnLimit);
    core::SheetEvaluator evaluator(sheet);
    QStringList header{u"|   |"_s};
    QStringList separator{u"| - |"_s};
    for (qint32 column = 0; column < shownColumns; ++column) {
        header.append(u" %1 |"_s.arg(core::columnName(column)));
        separator.append(u" - |"_s);
    }
    QStringList lines{u"## %1"_s.arg(sheet.title()), QString(), header.join(QString()),
                      separator.join(QString())};
    for (qint32 row = 0; row < shownRows; ++row) {
        QString line = u"| %1 |"_s.arg(row + 1);
        for (qint32 column = 0; column < shownColumns; ++column)
            line += u" %1 |"_s.arg(shownCell(sheet, evaluator, {row, column}));
        lines.append(line);
    }
    if (rowExtent > shownRows || columnExtent > shownColumns) {
        lines.append(QString());
        lines.append(u"Showing the first %1 of %2 populated rows and %3 of %4 columns."_s
                         .arg(QString::number(shownRows), QString::number(rowExtent),
                              QString::number(shownColumns), QString::number(columnExtent)));
    }
    return McpToolResult::success(lines.join(u'\n'));
}

} // namespace fb::app
