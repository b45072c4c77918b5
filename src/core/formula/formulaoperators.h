#pragma once

#include "core/formula/cellvalue.h"
#include "core/formula/formulatokenizer.h"

#include <optional>

namespace fb::core {

// A value read as a number by an operator or a function: the number, or the value the
// operation yields instead (the operand's own error, or "#ERR!" for a text that is not a
// number).
struct NumberOperand
{
    double number = 0;
    std::optional<CellValue> failure;
};

NumberOperand numberOperand(const CellValue &value);

// The binary operators on two single values. An error operand wins, the left one first.
// Arithmetic reads both operands as numbers (an empty cell is 0); comparison compares numbers
// when both read as numbers and texts otherwise, and gives 1 or 0.
CellValue applyBinary(BinaryOperator op, const CellValue &left, const CellValue &right);

// Unary minus, which reads its operand as a number like arithmetic does.
CellValue negate(const CellValue &value);

} // namespace fb::core
