#include "core/formula/formulaparser.h"

#include "core/formula/formulafunctions.h"

#include <algorithm>

namespace fb::core {

namespace {

using Code = FormulaOperation::Code;
using Kind = FormulaToken::Kind;

// What waits on the operator stack.
struct Pending
{
    enum class Kind { Binary, Negate, Paren, Call };

    Kind kind = Kind::Paren;
    BinaryOperator op = BinaryOperator::Add;
    FormulaFunction function = FormulaFunction::Unknown;
    qsizetype commas = 0;
    // Where an "IF" put its branch and its jump, to aim them once its ")" is reached.
    qsizetype branchAt = -1;
    qsizetype jumpAt = -1;
};

FormulaOperation operation(Code code)
{
    FormulaOperation made;
    made.code = code;
    return made;
}

Pending pending(Pending::Kind kind)
{
    Pending made;
    made.kind = kind;
    return made;
}

class Parser
{
public:
    explicit Parser(std::vector<FormulaToken> tokens)
        : m_tokens(std::move(tokens))
    {}

    std::optional<FormulaProgram> run()
    {
        for (m_at = 0; m_at < m_tokens.size(); ++m_at) {
            if (!take(m_tokens[m_at]))
                return std::nullopt;
        }
        if (m_expectOperand)
            return std::nullopt;
        unwindOperators();
        // An open parenthesis or call still stacked was never closed.
        if (!m_stack.empty())
            return std::nullopt;
        return std::move(m_program);
    }

private:
    bool take(const FormulaToken &token)
    {
        switch (token.kind) {
        case Kind::Number: {
            FormulaOperation number = operation(Code::Number);
            number.number = token.number;
            return operand(number);
        }
        case Kind::Text: {
            FormulaOperation text = operation(Code::Text);
            text.index = qsizetype(m_program.texts.size());
            m_program.texts.push_back(token.text);
            return operand(text);
        }
        case Kind::Reference:
            return reference(token);
        case Kind::Colon:
            return false; // only ever valid between the two corners of a range
        case Kind::Function:
            if (!m_expectOperand)
                return false;
            m_stack.push_back(pending(Pending::Kind::Call));
            m_stack.back().function = functionNamed(token.text);
            return true;
        case Kind::OpenParen:
            if (!m_expectOperand)
                return false;
            m_stack.push_back(pending(Pending::Kind::Paren));
            return true;
        case Kind::CloseParen:
            return closeParen();
        case Kind::Comma:
            return comma();
        case Kind::Operator:
            return binaryOrSign(token.op);
        }
        return false;
    }

    bool operand(const FormulaOperation &made)
    {
        if (!m_expectOperand)
            return false;
        m_program.operations.push_back(made);
        m_expectOperand = false;
        return true;
    }

    // A reference, or a range when a colon and a second reference follow.
    bool reference(const FormulaToken &token)
    {
        const bool isRange = m_at + 2 < m_tokens.size() && m_tokens[m_at + 1].kind == Kind::Colon;
        if (!isRange) {
            FormulaOperation reference = operation(Code::Reference);
            reference.range = {token.reference, token.reference};
            return operand(reference);
        }
        const FormulaToken &other = m_tokens[m_at + 2];
        if (other.kind != Kind::Reference)
            return false;
        m_at += 2;
        const CellAddress a = token.reference;
        const CellAddress b = other.reference;
        // "B5:A1" names the same rectangle as "A1:B5".
        FormulaOperation range = operation(Code::Range);
        range.range = {{std::min(a.row, b.row), std::min(a.column, b.column)},
                       {std::max(a.row, b.row), std::max(a.column, b.column)}};
        return operand(range);
    }

    // A "+" or "-" where an operand is expected is a sign; any other operator there is an error.
    bool binaryOrSign(BinaryOperator op)
    {
        if (m_expectOperand) {
            if (op == BinaryOperator::Subtract)
                m_stack.push_back(pending(Pending::Kind::Negate));
            // A unary plus changes nothing, not even a text into a number.
            return op == BinaryOperator::Subtract || op == BinaryOperator::Add;
        }
        // Operators of the same or a tighter level are applied first, which makes each level
        // associate to the left; a stacked unary minus binds tightest of all.
        const int level = bindingLevel(op);
        while (!m_stack.empty()) {
            const Pending &top = m_stack.back();
            if (top.kind == Pending::Kind::Negate)
                emitOperator(top);
            else if (top.kind == Pending::Kind::Binary && bindingLevel(top.op) >= level)
                emitOperator(top);
            else
                break;
            m_stack.pop_back();
        }
        m_stack.push_back(pending(Pending::Kind::Binary));
        m_stack.back().op = op;
        m_expectOperand = true;
        return true;
    }

    // Applies the stacked operators down to the nearest parenthesis or call.
    void unwindOperators()
    {
        while (!m_stack.empty()
               && (m_stack.back().kind == Pending::Kind::Binary
                   || m_stack.back().kind == Pending::Kind::Negate)) {
            emitOperator(m_stack.back());
            m_stack.pop_back();
        }
    }

    void emitOperator(const Pending &stacked)
    {
        FormulaOperation applied = operation(stacked.kind == Pending::Kind::Negate ? Code::Negate
                                                                                   : Code::Binary);
        applied.op = stacked.op;
        m_program.operations.push_back(applied);
    }

    bool closeParen()
    {
        if (m_expectOperand) {
            // Only a call with nothing between its parentheses: "SUM()".
            const bool isEmptyCall = !m_stack.empty() && m_stack.back().kind == Pending::Kind::Call
                                     && m_at > 0 && m_tokens[m_at - 1].kind == Kind::Function;
            if (!isEmptyCall)
                return false;
            finishCall(m_stack.back(), 0);
            m_stack.pop_back();
            m_expectOperand = false;
            return true;
        }
        unwindOperators();
        if (m_stack.empty())
            return false;
        if (m_stack.back().kind == Pending::Kind::Call)
            finishCall(m_stack.back(), m_stack.back().commas + 1);
        m_stack.pop_back();
        return true;
    }

    bool comma()
    {
        if (m_expectOperand)
            return false;
        unwindOperators();
        if (m_stack.empty() || m_stack.back().kind != Pending::Kind::Call)
            return false;
        Pending &call = m_stack.back();
        ++call.commas;
        if (call.function == FormulaFunction::If) {
            // After the condition: the branch to the third argument; after the second
            // argument: the jump past the third.
            if (call.commas == 1) {
                call.branchAt = qsizetype(m_program.operations.size());
                m_program.operations.push_back(operation(Code::Branch));
            } else if (call.commas == 2) {
                call.jumpAt = qsizetype(m_program.operations.size());
                m_program.operations.push_back(operation(Code::Jump));
            }
        }
        m_expectOperand = true;
        return true;
    }

    void finishCall(const Pending &call, qsizetype arguments)
    {
        std::vector<FormulaOperation> &operations = m_program.operations;
        if (call.function == FormulaFunction::If && arguments == 3) {
            const qsizetype end = qsizetype(operations.size());
            operations[std::size_t(call.branchAt)].index = call.jumpAt + 1;
            operations[std::size_t(call.branchAt)].end = end;
            operations[std::size_t(call.jumpAt)].index = end;
            return;
        }
        // A malformed "IF" evaluates all its arguments and is an error like any bad call.
        for (const qsizetype at : {call.branchAt, call.jumpAt}) {
            if (at >= 0)
                operations[std::size_t(at)].code = Code::Nothing;
        }
        FormulaOperation applied = operation(Code::Call);
        applied.function = call.function;
        applied.count = arguments;
        operations.push_back(applied);
    }

    std::vector<FormulaToken> m_tokens;
    std::size_t m_at = 0;
    std::vector<Pending> m_stack;
    FormulaProgram m_program;
    bool m_expectOperand = true;
};

} // namespace

std::optional<FormulaProgram> parseFormula(QStringView expression)
{
    std::optional<std::vector<FormulaToken>> tokens = tokenizeFormula(expression);
    if (!tokens)
        return std::nullopt;
    return Parser(std::move(*tokens)).run();
}

} // namespace fb::core
