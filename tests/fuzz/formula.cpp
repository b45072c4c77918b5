// Fuzzes the formula engine: one input holds the raw texts of a small sheet's cells, one per
// line, filled row by row into a 5 x 5 grid; the whole input is also parsed as one expression.
// The sheet is evaluated in a grid of its own size and in the largest grid a stored file can
// claim. Every value must be one of the four kinds, errors one of the four error texts,
// numbers finite and readable from their own text, literals what they read as, and the result
// of every cell the same whichever order the cells are evaluated in.

#include "core/formula/cellvalue.h"
#include "core/formula/formulaparser.h"
#include "core/formula/sheetevaluator.h"
#include "fuzzcheck.h"

#include <QMap>
#include <QStringList>

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

using namespace Qt::StringLiterals;

using namespace fb::core;

namespace {

constexpr qint32 side = 5;

void checkValue(const CellValue &value, const QString &text)
{
    switch (value.kind()) {
    case CellValue::Kind::Empty:
        FB_FUZZ_CHECK(text.isEmpty());
        return;
    case CellValue::Kind::Number:
        FB_FUZZ_CHECK(std::isfinite(value.toDouble()));
        FB_FUZZ_CHECK(readNumber(value.displayText()).has_value());
        break;
    case CellValue::Kind::Text:
        FB_FUZZ_CHECK(!text.isEmpty());
        break;
    case CellValue::Kind::Error: {
        static const QStringList errors{u"#ERR!"_s, u"#DIV/0!"_s, u"#REF!"_s, u"#CIRC!"_s};
        FB_FUZZ_CHECK(errors.contains(value.displayText()));
        FB_FUZZ_CHECK(isFormula(text));
        break;
    }
    }
    if (!isFormula(text))
        FB_FUZZ_CHECK(value == literalValue(text));
    else if (!parseFormula(QStringView(text).sliced(1)))
        FB_FUZZ_CHECK(value == CellValue::error(CellError::Malformed));
}

void checkSheet(qint32 rowCount, qint32 columnCount, const QMap<CellAddress, QString> &cells)
{
    SheetEvaluator forward(rowCount, columnCount, cells);
    std::vector<CellValue> values;
    for (qint32 row = 0; row < side; ++row) {
        for (qint32 column = 0; column < side; ++column) {
            values.push_back(forward.value({row, column}));
            checkValue(values.back(), cells.value({row, column}));
        }
    }
    SheetEvaluator backward(rowCount, columnCount, cells);
    for (qint32 row = side - 1; row >= 0; --row) {
        for (qint32 column = side - 1; column >= 0; --column)
            FB_FUZZ_CHECK(backward.value({row, column}) == values[std::size_t(row * side + column)]);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    (void)parseFormula(text);
    const QStringList lines = text.split(u'\n');
    QMap<CellAddress, QString> cells;
    for (qint32 i = 0; i < qint32(lines.size()) && i < side * side; ++i) {
        if (!lines.at(i).isEmpty())
            cells.insert({i / side, i % side}, lines.at(i));
    }
    checkSheet(side, side, cells);
    const qint32 largest = std::numeric_limits<qint32>::max();
    checkSheet(largest, largest, cells);
    return 0;
}
