#include "core/formula/formulaoperators.h"

namespace fb::core {

namespace {

CellValue truth(bool holds)
{
    return CellValue::number(holds ? 1 : 0);
}

CellValue compare(BinaryOperator op, const CellValue &left, const CellValue &right)
{
    const std::optional<double> a = left.asNumber();
    const std::optional<double> b = right.asNumber();
    // An empty cell reads as 0 and a text as the number it spells, if any. Numbers are compared
    // when both sides read as numbers; otherwise both sides as text, case-sensitively, with
    // a number in its display form and an empty cell as "".
    int order = 0;
    if (a && b)
        order = *a < *b ? -1 : (*a > *b ? 1 : 0);
    else
        order = QString::compare(left.displayText(), right.displayText(), Qt::CaseSensitive);
    switch (op) {
    case BinaryOperator::Equal:
        return truth(order == 0);
    case BinaryOperator::NotEqual:
        return truth(order != 0);
    case BinaryOperator::Less:
        return truth(order < 0);
    case BinaryOperator::Greater:
        return truth(order > 0);
    case BinaryOperator::LessEqual:
        return truth(order <= 0);
    default:
        break;
    }
    // Only the comparisons come here; what remains is ">=".
    return truth(order >= 0);
}

} // namespace

NumberOperand numberOperand(const CellValue &value)
{
    if (value.isError())
        return {0, value};
    if (const std::optional<double> number = value.asNumber())
        return {*number, std::nullopt};
    return {0, CellValue::error(CellError::Malformed)};
}

CellValue applyBinary(BinaryOperator op, const CellValue &left, const CellValue &right)
{
    if (left.isError())
        return left;
    if (right.isError())
        return right;
    if (bindingLevel(op) == 0)
        return compare(op, left, right);
    const NumberOperand a = numberOperand(left);
    if (a.failure)
        return *a.failure;
    const NumberOperand b = numberOperand(right);
    if (b.failure)
        return *b.failure;
    switch (op) {
    case BinaryOperator::Add:
        return CellValue::number(a.number + b.number);
    case BinaryOperator::Subtract:
        return CellValue::number(a.number - b.number);
    case BinaryOperator::Multiply:
        return CellValue::number(a.number * b.number);
    case BinaryOperator::Divide:
        if (b.number == 0)
            return CellValue::error(CellError::DivisionByZero);
        return CellValue::number(a.number / b.number);
    default:
        break;
    }
    return CellValue::error(CellError::Malformed);
}

CellValue negate(const CellValue &value)
{
    const NumberOperand operand = numberOperand(value);
    if (operand.failure)
        return *operand.failure;
    return CellValue::number(-operand.number);
}

} // namespace fb::core
