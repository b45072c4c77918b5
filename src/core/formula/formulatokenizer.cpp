#include "core/formula/formulatokenizer.h"

#include "core/formula/a1address.h"

#include <cmath>

namespace fb::core {

namespace {

using Kind = FormulaToken::Kind;

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

bool isLetter(QChar c)
{
    return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z');
}

FormulaToken simpleToken(Kind kind)
{
    FormulaToken token;
    token.kind = kind;
    return token;
}

FormulaToken operatorToken(BinaryOperator op)
{
    FormulaToken token;
    token.kind = Kind::Operator;
    token.op = op;
    return token;
}

// Scans one token at `at` and moves past it; nothing when the text there is not a token.
class Scanner
{
public:
    explicit Scanner(QStringView text)
        : m_text(text)
    {}

    bool atEnd()
    {
        while (m_at < m_text.size() && m_text[m_at].isSpace())
            ++m_at;
        return m_at >= m_text.size();
    }

    std::optional<FormulaToken> next()
    {
        const QChar c = m_text[m_at];
        if (isDigit(c) || c == u'.')
            return number();
        if (c == u'"')
            return string();
        if (isLetter(c) || c == u'$')
            return name();
        ++m_at;
        switch (c.unicode()) {
        case u'(':
            return simpleToken(Kind::OpenParen);
        case u')':
            return simpleToken(Kind::CloseParen);
        case u',':
            return simpleToken(Kind::Comma);
        case u':':
            return simpleToken(Kind::Colon);
        case u'+':
            return operatorToken(BinaryOperator::Add);
        case u'-':
            return operatorToken(BinaryOperator::Subtract);
        case u'*':
            return operatorToken(BinaryOperator::Multiply);
        case u'/':
            return operatorToken(BinaryOperator::Divide);
        case u'=':
            return operatorToken(BinaryOperator::Equal);
        case u'<':
            if (follows(u'>'))
                return operatorToken(BinaryOperator::NotEqual);
            if (follows(u'='))
                return operatorToken(BinaryOperator::LessEqual);
            return operatorToken(BinaryOperator::Less);
        case u'>':
            if (follows(u'='))
                return operatorToken(BinaryOperator::GreaterEqual);
            return operatorToken(BinaryOperator::Greater);
        default:
            return std::nullopt;
        }
    }

private:
    bool follows(char16_t c)
    {
        if (m_at < m_text.size() && m_text[m_at] == c) {
            ++m_at;
            return true;
        }
        return false;
    }

    // Digits with an optional decimal point: "12", "1.5", ".5" and "3." all read.
    std::optional<FormulaToken> number()
    {
        const qsizetype start = m_at;
        qsizetype digits = 0;
        for (; m_at < m_text.size() && isDigit(m_text[m_at]); ++m_at)
            ++digits;
        if (follows(u'.')) {
            for (; m_at < m_text.size() && isDigit(m_text[m_at]); ++m_at)
                ++digits;
        }
        if (digits == 0)
            return std::nullopt;
        bool ok = false;
        const double value = m_text.sliced(start, m_at - start).toDouble(&ok);
        if (!ok || !std::isfinite(value))
            return std::nullopt;
        FormulaToken token;
        token.number = value;
        return token;
    }

    std::optional<FormulaToken> string()
    {
        ++m_at;
        FormulaToken token;
        token.kind = Kind::Text;
        while (m_at < m_text.size()) {
            const QChar c = m_text[m_at++];
            if (c != u'"') {
                token.text.append(c);
                continue;
            }
            if (!follows(u'"'))
                return token;
            token.text.append(u'"');
        }
        return std::nullopt;
    }

    // A function name when "(" follows (after white space), else a cell reference.
    std::optional<FormulaToken> name()
    {
        const qsizetype start = m_at;
        while (m_at < m_text.size()
               && (isLetter(m_text[m_at]) || isDigit(m_text[m_at]) || m_text[m_at] == u'$'))
            ++m_at;
        const QStringView word = m_text.sliced(start, m_at - start);
        qsizetype after = m_at;
        while (after < m_text.size() && m_text[after].isSpace())
            ++after;
        const bool isCall = after < m_text.size() && m_text[after] == u'(';
        if (isCall && !word.contains(u'$')) {
            m_at = after + 1;
            FormulaToken token;
            token.kind = Kind::Function;
            token.text = word.toString();
            return token;
        }
        const std::optional<CellReference> reference = parseCellReference(word);
        if (!reference)
            return std::nullopt;
        FormulaToken token;
        token.kind = Kind::Reference;
        token.reference = reference->address;
        return token;
    }

    QStringView m_text;
    qsizetype m_at = 0;
};

} // namespace

int bindingLevel(BinaryOperator op)
{
    switch (op) {
    case BinaryOperator::Equal:
    case BinaryOperator::NotEqual:
    case BinaryOperator::Less:
    case BinaryOperator::Greater:
    case BinaryOperator::LessEqual:
    case BinaryOperator::GreaterEqual:
        return 0;
    case BinaryOperator::Add:
    case BinaryOperator::Subtract:
        return 1;
    case BinaryOperator::Multiply:
    case BinaryOperator::Divide:
        break;
    }
    return 2;
}

std::optional<std::vector<FormulaToken>> tokenizeFormula(QStringView expression)
{
    Scanner scanner(expression);
    std::vector<FormulaToken> tokens;
    while (!scanner.atEnd()) {
        std::optional<FormulaToken> token = scanner.next();
        if (!token)
            return std::nullopt;
        tokens.push_back(std::move(*token));
    }
    return tokens;
}

} // namespace fb::core
