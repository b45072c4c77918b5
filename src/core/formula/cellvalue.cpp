#include "core/formula/cellvalue.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace fb::core {

namespace {

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

// Moves past a run of ASCII digits and says how many there were.
qsizetype skipDigits(QStringView text, qsizetype &at)
{
    const qsizetype start = at;
    while (at < text.size() && isDigit(text[at]))
        ++at;
    return at - start;
}

} // namespace

CellValue CellValue::number(double value)
{
    if (!std::isfinite(value))
        return error(CellError::Malformed);
    CellValue result;
    result.m_kind = Kind::Number;
    result.m_number = value;
    return result;
}

CellValue CellValue::text(QString value)
{
    CellValue result;
    result.m_kind = Kind::Text;
    result.m_text = std::move(value);
    return result;
}

CellValue CellValue::error(CellError error)
{
    CellValue result;
    result.m_kind = Kind::Error;
    result.m_error = error;
    return result;
}

std::optional<double> CellValue::asNumber() const
{
    switch (m_kind) {
    case Kind::Empty:
        return 0.0;
    case Kind::Number:
        return m_number;
    case Kind::Text:
        return readNumber(m_text);
    case Kind::Error:
        break;
    }
    return std::nullopt;
}

QString CellValue::displayText() const
{
    switch (m_kind) {
    case Kind::Empty:
        break;
    case Kind::Number:
        return formatNumber(m_number);
    case Kind::Text:
        return m_text;
    case Kind::Error:
        return errorText(m_error);
    }
    return QString();
}

bool CellValue::operator==(const CellValue &other) const
{
    if (m_kind != other.m_kind)
        return false;
    switch (m_kind) {
    case Kind::Empty:
        return true;
    case Kind::Number:
        return m_number == other.m_number;
    case Kind::Text:
        return m_text == other.m_text;
    case Kind::Error:
        return m_error == other.m_error;
    }
    return false;
}

QString errorText(CellError error)
{
    switch (error) {
    case CellError::Malformed:
        break;
    case CellError::DivisionByZero:
        return u"#DIV/0!"_s;
    case CellError::BadReference:
        return u"#REF!"_s;
    case CellError::Circular:
        return u"#CIRC!"_s;
    }
    return u"#ERR!"_s;
}

QString formatNumber(double value)
{
    // Adding 0.0 turns negative zero into zero; "-0" would read as a different value.
    return QString::number(value + 0.0, 'g', 15);
}

std::optional<double> readNumber(QStringView text)
{
    const QStringView trimmed = text.trimmed();
    qsizetype at = 0;
    if (at < trimmed.size() && (trimmed[at] == u'+' || trimmed[at] == u'-'))
        ++at;
    qsizetype digits = skipDigits(trimmed, at);
    if (at < trimmed.size() && trimmed[at] == u'.') {
        ++at;
        digits += skipDigits(trimmed, at);
    }
    if (digits == 0)
        return std::nullopt;
    if (at < trimmed.size() && (trimmed[at] == u'e' || trimmed[at] == u'E')) {
        ++at;
        if (at < trimmed.size() && (trimmed[at] == u'+' || trimmed[at] == u'-'))
            ++at;
        if (skipDigits(trimmed, at) == 0)
            return std::nullopt;
    }
    if (at != trimmed.size())
        return std::nullopt;
    bool ok = false;
    const double value = trimmed.toDouble(&ok);
    if (!ok || !std::isfinite(value))
        return std::nullopt;
    return value;
}

} // namespace fb::core
