#pragma once

#include "core/formula/cellvalue.h"
#include "core/spreadsheet.h"

#include <QMap>

#include <memory>

namespace fb::core {

// A cell's raw text is a formula when it starts with "="; any other text is a literal.
inline bool isFormula(const QString &text)
{
    return text.startsWith(u'=');
}

// The value a literal holds: a number when the text reads as one, otherwise the text.
CellValue literalValue(const QString &text);

// One evaluation run over a sheet: cells are evaluated on demand, each at most once, and their
// values are kept for the rest of the run. The evaluator copies what it needs of the sheet when
// it is made (the texts are shared, not duplicated), so later changes to the sheet do not reach
// it; make a new one to see them.
//
// References are followed depth first with an explicit work stack, never by recursion, so
// neither a long chain of references nor a deeply nested formula can exhaust the call stack.
// The cells of a reference cycle are found as they are met (by the strongly connected
// components of the references actually followed) and every one of them is "#CIRC!", whichever
// cell the run starts from. The run's memory grows with the cells that hold text, never with
// the size of the grid, so a stored grid of any size costs nothing extra.
class SheetEvaluator
{
public:
    SheetEvaluator(qint32 rowCount, qint32 columnCount, const QMap<CellAddress, QString> &cells);
    explicit SheetEvaluator(const Spreadsheet &sheet);
    ~SheetEvaluator();

    SheetEvaluator(const SheetEvaluator &) = delete;
    SheetEvaluator &operator=(const SheetEvaluator &) = delete;

    // The value of the cell at a 0-based address: "#REF!" outside the grid, empty for a cell
    // without text.
    CellValue value(CellAddress address);

private:
    class Run;
    std::unique_ptr<Run> m_run;
};

// Evaluates one cell in a run of its own.
CellValue evaluateCell(const Spreadsheet &sheet, CellAddress address);

} // namespace fb::core
