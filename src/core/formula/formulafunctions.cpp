#include "core/formula/formulafunctions.h"

#include "core/formula/formulaoperators.h"

#include <QList>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace fb::core {

namespace {

using Kind = FormulaOperand::Kind;

constexpr qsizetype unlimited = std::numeric_limits<qsizetype>::max();

struct Signature
{
    QStringView name;
    FormulaFunction function;
    qsizetype least;
    qsizetype most;
};

// The function table: each name with the number of arguments it takes.
constexpr std::array signatures{
    Signature{u"SUM", FormulaFunction::Sum, 0, unlimited},
    Signature{u"PRODUCT", FormulaFunction::Product, 0, unlimited},
    Signature{u"COUNT", FormulaFunction::Count, 0, unlimited},
    Signature{u"AVERAGE", FormulaFunction::Average, 1, unlimited},
    Signature{u"MIN", FormulaFunction::Min, 1, unlimited},
    Signature{u"MAX", FormulaFunction::Max, 1, unlimited},
    Signature{u"AND", FormulaFunction::And, 0, unlimited},
    Signature{u"OR", FormulaFunction::Or, 0, unlimited},
    Signature{u"NOT", FormulaFunction::Not, 1, 1},
    Signature{u"ABS", FormulaFunction::Abs, 1, 1},
    Signature{u"INT", FormulaFunction::Int, 1, 1},
    Signature{u"SQRT", FormulaFunction::Sqrt, 1, 1},
    Signature{u"POWER", FormulaFunction::Power, 2, 2},
    Signature{u"MOD", FormulaFunction::Mod, 2, 2},
    Signature{u"ROUND", FormulaFunction::Round, 1, 2},
    Signature{u"IF", FormulaFunction::If, 3, 3},
    // Joining nothing is more likely a slip than a wish for an empty text, as in spreadsheets.
    Signature{u"CONCAT", FormulaFunction::Concat, 1, unlimited},
    Signature{u"LEFT", FormulaFunction::Left, 1, 2},
    Signature{u"RIGHT", FormulaFunction::Right, 1, 2},
    Signature{u"MID", FormulaFunction::Mid, 3, 3},
    Signature{u"LEN", FormulaFunction::Len, 1, 1},
    Signature{u"UPPER", FormulaFunction::Upper, 1, 1},
    Signature{u"LOWER", FormulaFunction::Lower, 1, 1},
    Signature{u"TRIM", FormulaFunction::Trim, 1, 1},
};

CellValue malformed()
{
    return CellValue::error(CellError::Malformed);
}

// A range where a single value is expected is an error.
CellValue single(const FormulaOperand &argument)
{
    return argument.kind == Kind::Range ? malformed() : argument.value;
}

// How a text typed into the formula (or computed by it) counts for the aggregate functions.
enum class DirectText { MustBeNumber, CountsWhenNumeric };

// Hands every number among the arguments to `take`, and gives the first error if there is one.
// Cells are read as spreadsheet users expect: in a range, and through a reference, only
// numbers count; texts and empty cells are skipped, so a column with a heading or a gap still
// sums. A value given directly is read like an operand of arithmetic ("5" counts as 5, other
// text is "#ERR!"), except that COUNT merely leaves out what is not a number.
std::optional<CellValue> forEachNumber(std::span<const FormulaOperand> arguments,
                                       RangeSource &cells, DirectText direct,
                                       const std::function<void(double)> &take)
{
    for (const FormulaOperand &argument : arguments) {
        if (argument.kind == Kind::Range) {
            std::optional<CellValue> failure;
            cells.visit(argument.range, [&](const CellValue &value) {
                if (value.isError()) {
                    failure = value;
                    return false;
                }
                if (value.isNumber())
                    take(value.toDouble());
                return true;
            });
            if (failure)
                return failure;
            continue;
        }
        const CellValue &value = argument.value;
        if (value.isError())
            return value;
        if (argument.kind == Kind::Reference) {
            if (value.isNumber())
                take(value.toDouble());
            continue;
        }
        if (const std::optional<double> number = value.asNumber())
            take(*number);
        else if (direct == DirectText::MustBeNumber)
            return malformed();
    }
    return std::nullopt;
}

CellValue aggregate(FormulaFunction function, std::span<const FormulaOperand> arguments,
                    RangeSource &cells)
{
    double sum = 0;
    double product = 1;
    qint64 count = 0;
    double least = std::numeric_limits<double>::infinity();
    double most = -std::numeric_limits<double>::infinity();
    bool allNonZero = true;
    bool someNonZero = false;
    const DirectText direct = function == FormulaFunction::Count ? DirectText::CountsWhenNumeric
                                                                 : DirectText::MustBeNumber;
    const std::optional<CellValue> failure = forEachNumber(arguments, cells, direct,
                                                           [&](double number) {
                                                               sum += number;
                                                               product *= number;
                                                               ++count;
                                                               least = std::min(least, number);
                                                               most = std::max(most, number);
                                                               allNonZero = allNonZero
                                                                            && number != 0;
                                                               someNonZero = someNonZero
                                                                             || number != 0;
                                                           });
    if (failure)
        return *failure;
    switch (function) {
    case FormulaFunction::Sum:
        return CellValue::number(sum);
    case FormulaFunction::Product:
        return CellValue::number(product);
    case FormulaFunction::Count:
        return CellValue::number(double(count));
    case FormulaFunction::Average:
        // Arguments that hold no number at all (a range still blank) leave a division by a
        // count of zero, which spreadsheets report as such.
        if (count == 0)
            return CellValue::error(CellError::DivisionByZero);
        return CellValue::number(sum / double(count));
    case FormulaFunction::Min:
    case FormulaFunction::Max:
        // These need at least one number to answer with; blank cells do not count as 0.
        if (count == 0)
            return malformed();
        return CellValue::number(function == FormulaFunction::Min ? least : most);
    case FormulaFunction::And:
        return CellValue::number(allNonZero ? 1 : 0);
    case FormulaFunction::Or:
        return CellValue::number(someNonZero ? 1 : 0);
    default:
        break;
    }
    return malformed();
}

// ROUND's rule, round(x * 10^d) / 10^d with halves away from zero; a fractional d is cut
// towards zero. Where 10^d leaves the range of doubles, there is nothing to round: far to the
// right of the point the number stays as it is, far to the left it becomes 0.
double roundTo(double number, double digits)
{
    const double scale = std::pow(10.0, std::clamp(std::trunc(digits), -400.0, 400.0));
    if (scale == 0)
        return 0;
    const double scaled = number * scale;
    if (!std::isfinite(scaled))
        return number;
    return std::round(scaled) / scale;
}

CellValue mathematical(FormulaFunction function, std::span<const FormulaOperand> arguments)
{
    std::array<double, 2> numbers{0, 0};
    for (std::size_t i = 0; i < arguments.size() && i < numbers.size(); ++i) {
        const NumberOperand operand = numberOperand(single(arguments[i]));
        if (operand.failure)
            return *operand.failure;
        numbers[i] = operand.number;
    }
    const double x = numbers[0];
    const double y = numbers[1];
    switch (function) {
    case FormulaFunction::Not:
        return CellValue::number(x == 0 ? 1 : 0);
    case FormulaFunction::Abs:
        return CellValue::number(std::fabs(x));
    case FormulaFunction::Int:
        return CellValue::number(std::floor(x));
    case FormulaFunction::Sqrt:
        return x < 0 ? malformed() : CellValue::number(std::sqrt(x));
    case FormulaFunction::Power:
        return CellValue::number(std::pow(x, y));
    case FormulaFunction::Mod:
        if (y == 0)
            return malformed();
        return CellValue::number(x - std::floor(x / y) * y);
    case FormulaFunction::Round:
        return CellValue::number(roundTo(x, arguments.size() > 1 ? y : 0));
    default:
        break;
    }
    return malformed();
}

// A character count for LEFT, RIGHT and MID: read like a number operand, cut towards zero;
// a negative count is an error. Counts beyond the text are capped at its length.
std::optional<qsizetype> characterCount(const FormulaOperand &argument, qsizetype length,
                                        CellValue &failure)
{
    const NumberOperand operand = numberOperand(single(argument));
    if (operand.failure) {
        failure = *operand.failure;
        return std::nullopt;
    }
    const double count = std::trunc(operand.number);
    if (count < 0) {
        failure = malformed();
        return std::nullopt;
    }
    return count >= double(length) ? length : qsizetype(count);
}

// The text functions count characters, not UTF-16 units, so that no character is cut in two.
QString fromCharacters(const QList<uint> &characters, qsizetype from, qsizetype count)
{
    return QString::fromUcs4(reinterpret_cast<const char32_t *>(characters.constData()) + from,
                             count);
}

CellValue concatenated(std::span<const FormulaOperand> arguments, RangeSource &cells)
{
    // Numbers join in their display form (shortest, up to 15 significant digits) and empty
    // cells add nothing; a range adds its cells in reading order.
    QString joined;
    for (const FormulaOperand &argument : arguments) {
        if (argument.kind != Kind::Range) {
            if (argument.value.isError())
                return argument.value;
            joined += argument.value.displayText();
            continue;
        }
        std::optional<CellValue> failure;
        cells.visit(argument.range, [&](const CellValue &value) {
            if (value.isError())
                failure = value;
            else
                joined += value.displayText();
            return !failure;
        });
        if (failure)
            return *failure;
    }
    return CellValue::text(joined);
}

CellValue textual(FormulaFunction function, std::span<const FormulaOperand> arguments)
{
    const CellValue subject = single(arguments[0]);
    if (subject.isError())
        return subject;
    const QString text = subject.displayText();
    switch (function) {
    case FormulaFunction::Len:
        return CellValue::number(double(text.toUcs4().size()));
    case FormulaFunction::Upper:
        return CellValue::text(text.toUpper());
    case FormulaFunction::Lower:
        return CellValue::text(text.toLower());
    case FormulaFunction::Trim:
        // White space goes from both ends, and each inner run becomes one space.
        return CellValue::text(text.simplified());
    default:
        break;
    }
    const QList<uint> characters = text.toUcs4();
    const qsizetype length = characters.size();
    CellValue failure;
    if (function == FormulaFunction::Mid) {
        // MID counts its start from 1, like the rest of the sheet; a start past the end gives
        // the empty text.
        const NumberOperand start = numberOperand(single(arguments[1]));
        if (start.failure)
            return *start.failure;
        const double first = std::trunc(start.number);
        if (first < 1)
            return malformed();
        const std::optional<qsizetype> count = characterCount(arguments[2], length, failure);
        if (!count)
            return failure;
        if (first > double(length))
            return CellValue::text(QString());
        const qsizetype from = qsizetype(first) - 1;
        return CellValue::text(fromCharacters(characters, from, std::min(*count, length - from)));
    }
    // LEFT and RIGHT take one character unless told otherwise.
    qsizetype count = std::min<qsizetype>(1, length);
    if (arguments.size() > 1) {
        const std::optional<qsizetype> given = characterCount(arguments[1], length, failure);
        if (!given)
            return failure;
        count = *given;
    }
    const qsizetype from = function == FormulaFunction::Left ? 0 : length - count;
    return CellValue::text(fromCharacters(characters, from, count));
}

} // namespace

FormulaFunction functionNamed(QStringView name)
{
    for (const Signature &signature : signatures) {
        if (name.compare(signature.name, Qt::CaseInsensitive) == 0)
            return signature.function;
    }
    return FormulaFunction::Unknown;
}

CellValue callFunction(FormulaFunction function, std::span<const FormulaOperand> arguments,
                       RangeSource &cells)
{
    const auto signature = std::find_if(signatures.cbegin(), signatures.cend(),
                                        [&](const Signature &s) { return s.function == function; });
    const qsizetype count = qsizetype(arguments.size());
    if (signature == signatures.cend() || count < signature->least || count > signature->most)
        return malformed();
    switch (function) {
    case FormulaFunction::Sum:
    case FormulaFunction::Product:
    case FormulaFunction::Count:
    case FormulaFunction::Average:
    case FormulaFunction::Min:
    case FormulaFunction::Max:
    case FormulaFunction::And:
    case FormulaFunction::Or:
        return aggregate(function, arguments, cells);
    case FormulaFunction::Concat:
        return concatenated(arguments, cells);
    case FormulaFunction::Left:
    case FormulaFunction::Right:
    case FormulaFunction::Mid:
    case FormulaFunction::Len:
    case FormulaFunction::Upper:
    case FormulaFunction::Lower:
    case FormulaFunction::Trim:
        return textual(function, arguments);
    case FormulaFunction::If:
        // A well-formed IF compiles to a branch and never gets here; this call had the wrong
        // number of arguments.
        return malformed();
    default:
        break;
    }
    return mathematical(function, arguments);
}

} // namespace fb::core
