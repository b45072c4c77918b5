#pragma once

#include <QString>

#include <optional>

namespace fb::core {

// The four ways a formula can fail, each shown as its own text.
enum class CellError {
    Malformed,      // "#ERR!": a malformed formula, a bad operand or a bad function call
    DivisionByZero, // "#DIV/0!"
    BadReference,   // "#REF!": a reference outside the grid
    Circular,       // "#CIRC!": the cell takes part in a reference cycle
};

// The result of evaluating one cell: a number, a text, an empty cell or an error.
class CellValue
{
public:
    enum class Kind { Empty, Number, Text, Error };

    CellValue() = default;

    static CellValue empty() { return CellValue(); }
    // A result that is not a finite number is "#ERR!", so no infinity or NaN ever reaches a
    // cell, a comparison or the text of a result.
    static CellValue number(double value);
    static CellValue text(QString value);
    static CellValue error(CellError error);

    Kind kind() const { return m_kind; }
    bool isEmpty() const { return m_kind == Kind::Empty; }
    bool isNumber() const { return m_kind == Kind::Number; }
    bool isText() const { return m_kind == Kind::Text; }
    bool isError() const { return m_kind == Kind::Error; }

    double toDouble() const { return m_number; }
    const QString &textValue() const { return m_text; }
    CellError errorValue() const { return m_error; }

    // The value as a number for arithmetic: a number as is, an empty cell as 0, a text when it
    // reads as a number. Nothing for other texts and for errors.
    std::optional<double> asNumber() const;
    // The value as a cell shows it and as text operations and text comparison read it: the
    // number in its shortest form, the text itself, "" for an empty cell, the error's text.
    QString displayText() const;

    bool operator==(const CellValue &other) const;

private:
    Kind m_kind = Kind::Empty;
    double m_number = 0;
    QString m_text;
    CellError m_error = CellError::Malformed;
};

QString errorText(CellError error);

// A number in its shortest general form with up to 15 significant digits ("0.3" for 0.1 + 0.2,
// "1e+20" for 10^20); negative zero is written "0".
QString formatNumber(double value);

// Whether a text reads as a number: white space at both ends is ignored, then an optional
// sign, digits with an optional decimal point (at least one digit), and an optional exponent.
// "inf", "nan", hexadecimal, thousands separators and values too large for a double do not read.
std::optional<double> readNumber(QStringView text);

} // namespace fb::core
