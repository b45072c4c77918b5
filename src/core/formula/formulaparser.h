#pragma once

#include "core/formula/formulaprogram.h"

#include <optional>

namespace fb::core {

// Compiles the expression of a formula (the text after its "=") in one left-to-right scan with
// an operator stack, without recursion, so nesting depth costs only heap memory. Nothing when
// the expression is malformed: a malformed formula has only one outcome, "#ERR!", so there is
// no reason to carry.
std::optional<FormulaProgram> parseFormula(QStringView expression);

} // namespace fb::core
