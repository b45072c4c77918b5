#pragma once

#include "core/formula/cellvalue.h"
#include "core/formula/formulaprogram.h"

#include <functional>
#include <span>

namespace fb::core {

// An argument as a function receives it. A reference keeps the fact that it names a cell,
// because the counting functions treat a cell's text differently from a text typed into the
// formula, as spreadsheets do.
struct FormulaOperand
{
    enum class Kind { Value, Reference, Range };

    Kind kind = Kind::Value;
    CellValue value; // for a value and a reference
    CellRange range; // for a range
};

// What a function reads of a range: the values of the cells in it that hold something, row by
// row and left to right within a row. The visitor returns false to stop early.
class RangeSource
{
public:
    virtual ~RangeSource() = default;
    virtual void visit(const CellRange &range, const std::function<bool(const CellValue &)> &visitor)
        = 0;
};

// The function of that name, in any letter case; Unknown for other names.
FormulaFunction functionNamed(QStringView name);

// Applies a function to its evaluated arguments. A wrong number of arguments, and an unknown
// function, give "#ERR!" whatever the arguments hold; otherwise the first error among the
// arguments (within a range, the first in reading order) is the result.
CellValue callFunction(FormulaFunction function, std::span<const FormulaOperand> arguments,
                       RangeSource &cells);

} // namespace fb::core
