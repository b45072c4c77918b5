#pragma once

#include "core/spreadsheet.h"

#include <QString>

#include <optional>
#include <vector>

namespace fb::core {

// The binary operators, from loosest to tightest binding: comparisons, then "+" and "-", then
// "*" and "/".
enum class BinaryOperator {
    Equal,
    NotEqual,
    Less,
    Greater,
    LessEqual,
    GreaterEqual,
    Add,
    Subtract,
    Multiply,
    Divide,
};

// 0 for comparisons, 1 for "+" and "-", 2 for "*" and "/".
int bindingLevel(BinaryOperator op);

// One piece of a formula. A name is only ever a function name: the scanner takes a name as one
// when "(" follows it, and the "(" belongs to the token.
struct FormulaToken
{
    enum class Kind {
        Number,
        Text,
        Reference,
        Colon,
        Function,
        OpenParen,
        CloseParen,
        Comma,
        Operator
    };

    Kind kind = Kind::Number;
    double number = 0;
    QString text;          // a string's contents, or a function's name
    CellAddress reference; // 0-based
    BinaryOperator op = BinaryOperator::Add;
};

// Splits the expression of a formula (the text after its "=") into tokens. Nothing when the
// text holds a character the language does not know, an unterminated string, a name that is
// neither a reference nor followed by "(", or a number too large for a double. White space
// between tokens is skipped; within a string a doubled quote stands for one quote.
std::optional<std::vector<FormulaToken>> tokenizeFormula(QStringView expression);

} // namespace fb::core
