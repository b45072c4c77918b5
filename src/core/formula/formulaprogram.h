#pragma once

#include "core/formula/formulatokenizer.h"
#include "core/spreadsheet.h"

#include <QString>

#include <vector>

namespace fb::core {

// The functions of the formula language; Unknown stands for any other name, whose call is an
// error when it is evaluated.
enum class FormulaFunction {
    Unknown,
    Sum,
    Product,
    Count,
    Average,
    Min,
    Max,
    And,
    Or,
    Not,
    Abs,
    Int,
    Sqrt,
    Power,
    Mod,
    Round,
    If,
    Concat,
    Left,
    Right,
    Mid,
    Len,
    Upper,
    Lower,
    Trim,
};

// A rectangle of cells, its corners in order (top-left, bottom-right), 0-based.
struct CellRange
{
    CellAddress first;
    CellAddress last;
};

// One step of a compiled formula. The steps work on a stack of operands, in postfix order:
// operands push, operators and calls pop their arguments and push their result. "IF" compiles
// to a branch and a jump around its two results, so only the chosen one is evaluated.
struct FormulaOperation
{
    enum class Code {
        Number,    // push `number`
        Text,      // push the text `index`
        Reference, // push the value of the cell `range.first`
        Range,     // push the range `range`
        Negate,    // pop one, push its negation
        Binary,    // pop two, push `op` applied to them
        Call,      // pop `count` arguments, push `function` applied to them
        Branch,    // pop a condition: on an error push it and go to `end`, on 0 go to `index`
        Jump,      // go to `index`
        Nothing,   // what a branch of a malformed "IF" becomes
    };

    Code code = Code::Nothing;
    BinaryOperator op = BinaryOperator::Add;
    FormulaFunction function = FormulaFunction::Unknown;
    qsizetype count = 0;
    qsizetype index = 0;
    qsizetype end = 0;
    double number = 0;
    CellRange range;
};

// A formula compiled once and run by the sheet evaluator.
struct FormulaProgram
{
    std::vector<FormulaOperation> operations;
    std::vector<QString> texts;
};

} // namespace fb::core
