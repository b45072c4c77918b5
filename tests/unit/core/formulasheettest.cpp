// The sheet around the formulas: A1 addresses, how literals read and numbers print, reference
// cycles, and the sizes a hostile or simply large sheet can reach.

#include "core/formula/a1address.h"
#include "core/formula/cellvalue.h"
#include "core/formula/sheetevaluator.h"

#include <QElapsedTimer>
#include <QMap>

#include <gtest/gtest.h>

#include <limits>
#include <optional>

using namespace Qt::StringLiterals;

using fb::core::CellAddress;
using fb::core::SheetEvaluator;

namespace {

using Texts = QMap<CellAddress, QString>;

CellAddress at(const char *name)
{
    return *fb::core::parseA1Address(QString::fromUtf8(name));
}

Texts texts(std::initializer_list<std::pair<const char *, const char *>> cells)
{
    Texts result;
    for (const auto &[name, text] : cells)
        result.insert(at(name), QString::fromUtf8(text));
    return result;
}

QString shown(SheetEvaluator &evaluator, const char *name)
{
    return evaluator.value(at(name)).displayText();
}

TEST(A1Address, ReadsLettersAndDigitsWithOptionalDollarSigns)
{
    struct Case
    {
        const char *text;
        std::optional<CellAddress> expected;
    };
    const Case cases[] = {
        {"B7", CellAddress{6, 1}},
        {"$B$7", CellAddress{6, 1}},
        {"b7", CellAddress{6, 1}},
        {"B$7", CellAddress{6, 1}},
        {"A1", CellAddress{0, 0}},
        {"A01", CellAddress{0, 0}},
        {"Z1", CellAddress{0, 25}},
        {"AA1", CellAddress{0, 26}},
        {"ZZ10", CellAddress{9, 701}},
        {"AAA1", CellAddress{0, 702}},
        {"A0", std::nullopt},
        {"7B", std::nullopt},
        {"", std::nullopt},
        {"B", std::nullopt},
        {"7", std::nullopt},
        {" B7", std::nullopt},
        {"B7 ", std::nullopt},
        {"$$B7", std::nullopt},
        {"B$$7", std::nullopt},
        {"B7$", std::nullopt},
        {"B-7", std::nullopt},
        {"\u00c47", std::nullopt},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(fb::core::parseA1Address(QString::fromUtf8(c.text)), c.expected);
    }
    // Far beyond any grid: the largest count, never a wrapped-around small one.
    const qint32 largest = std::numeric_limits<qint32>::max();
    EXPECT_EQ(fb::core::parseA1Address(u"A99999999999999999999"_s), (CellAddress{largest, 0}));
    EXPECT_EQ(fb::core::parseA1Address(u"ZZZZZZZZZZZZZZZZ1"_s), (CellAddress{0, largest}));
}

TEST(A1Address, NamesColumnsAndCells)
{
    EXPECT_EQ(fb::core::columnName(0), u"A"_s);
    EXPECT_EQ(fb::core::columnName(25), u"Z"_s);
    EXPECT_EQ(fb::core::columnName(26), u"AA"_s);
    EXPECT_EQ(fb::core::columnName(701), u"ZZ"_s);
    EXPECT_EQ(fb::core::columnName(702), u"AAA"_s);
    EXPECT_EQ(fb::core::addressName({6, 1}), u"B7"_s);
    for (qint32 column : {0, 1, 25, 26, 51, 52, 701, 702, 18277, 18278}) {
        SCOPED_TRACE(column);
        const QString name = fb::core::addressName({0, column});
        EXPECT_EQ(fb::core::parseA1Address(name), (CellAddress{0, column}));
    }
}

TEST(CellValue, ReadsLiteralsAsNumbersOnlyWhenTheyAreNumbers)
{
    struct Case
    {
        const char *text;
        std::optional<double> expected;
    };
    const Case cases[] = {
        {"5", 5},
        {" 5 ", 5},
        {"-5", -5},
        {"+5", 5},
        {".5", 0.5},
        {"5.", 5},
        {"1e3", 1000},
        {"1E-2", 0.01},
        {"-.5e+1", -5},
        {"abc", std::nullopt},
        {"", std::nullopt},
        {".", std::nullopt},
        {"1e", std::nullopt},
        {"e5", std::nullopt},
        {"inf", std::nullopt},
        {"nan", std::nullopt},
        {"0x10", std::nullopt},
        {"1,000", std::nullopt},
        {"1e999", std::nullopt},
        {"5 apples", std::nullopt},
        {"--5", std::nullopt},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(fb::core::readNumber(QString::fromUtf8(c.text)), c.expected);
    }
    EXPECT_TRUE(fb::core::literalValue(u"12"_s).isNumber());
    EXPECT_TRUE(fb::core::literalValue(u"12 monkeys"_s).isText());
}

TEST(CellValue, PrintsNumbersInTheirShortestFormWithUpTo15Digits)
{
    struct Case
    {
        double number;
        const char *expected;
    };
    const Case cases[] = {
        {0.1 + 0.2, "0.3"},
        {1.0 / 3, "0.333333333333333"},
        {2.5, "2.5"},
        {100, "100"},
        {-0.0, "0"},
        {1e20, "1e+20"},
        {123456789012345, "123456789012345"},
        {123456789012345678.0, "1.23456789012346e+17"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.expected);
        EXPECT_EQ(fb::core::formatNumber(c.number), QString::fromUtf8(c.expected));
    }
    EXPECT_EQ(fb::core::CellValue::number(std::numeric_limits<double>::infinity()),
              fb::core::CellValue::error(fb::core::CellError::Malformed));
}

// Every cell of a cycle is "#CIRC!", whichever cell the run starts from; a cell outside the
// cycle that reads it passes the error on.
TEST(SheetEvaluator, MarksEveryCellOfACycle)
{
    struct Case
    {
        const char *name;
        Texts cells;
        std::vector<std::pair<const char *, const char *>> expected;
    };
    const Case cases[] = {
        {"two cells", texts({{"A1", "=B1"}, {"B1", "=A1"}}), {{"A1", "#CIRC!"}, {"B1", "#CIRC!"}}},
        {"three cells",
         texts({{"A1", "=B1+1"}, {"B1", "=C1*2"}, {"C1", "=A1-1"}, {"D1", "=A1+1"}}),
         {{"A1", "#CIRC!"}, {"B1", "#CIRC!"}, {"C1", "#CIRC!"}, {"D1", "#CIRC!"}}},
        {"itself", texts({{"A1", "=A1"}, {"A2", "=A1+1"}}), {{"A1", "#CIRC!"}, {"A2", "#CIRC!"}}},
        {"itself in a range",
         texts({{"A1", "=SUM(A1:A3)"}, {"A2", "4"}}),
         {{"A1", "#CIRC!"}, {"A2", "4"}}},
        // C1 reaches the cycle only through B1, which may be finished before C1 is met; it
        // still lies on the cycle A1 -> C1 -> B1 -> A1, and its own error must not win.
        {"through a finished cell",
         texts({{"A1", "=B1+C1"}, {"B1", "=A1"}, {"C1", "=1/0+B1"}}),
         {{"A1", "#CIRC!"}, {"B1", "#CIRC!"}, {"C1", "#CIRC!"}}},
        {"two cycles sharing a cell",
         texts({{"A1", "=B1+C1"}, {"B1", "=A1"}, {"C1", "=A1"}, {"D1", "=5"}}),
         {{"A1", "#CIRC!"}, {"B1", "#CIRC!"}, {"C1", "#CIRC!"}, {"D1", "5"}}},
        {"a cycle in the branch not taken",
         texts({{"A1", "=IF(1,5,B1)"}, {"B1", "=A1"}}),
         {{"A1", "5"}, {"B1", "5"}}},
        {"a cycle in the condition",
         texts({{"A1", "=IF(B1,1,2)"}, {"B1", "=A1"}}),
         {{"A1", "#CIRC!"}, {"B1", "#CIRC!"}}},
        {"a chain without a cycle",
         texts({{"A1", "=B1+B1"}, {"B1", "=C1+C1"}, {"C1", "1"}}),
         {{"A1", "4"}, {"B1", "2"}, {"C1", "1"}}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        for (const auto &[start, unused] : c.expected) {
            SCOPED_TRACE(start);
            SheetEvaluator evaluator(10, 10, c.cells);
            evaluator.value(at(start));
            for (const auto &[name, value] : c.expected)
                EXPECT_EQ(shown(evaluator, name), QString::fromUtf8(value)) << name;
        }
    }
}

TEST(SheetEvaluator, ReadsOnlyTheCellsOfARangeThatLieInIt)
{
    // A 5 x 5 block numbered 1 to 25 row by row, and cells outside the grid that no reference
    // can reach.
    Texts cells;
    for (qint32 row = 0; row < 5; ++row) {
        for (qint32 column = 0; column < 5; ++column)
            cells.insert({row, column}, QString::number(row * 5 + column + 1));
    }
    cells.insert({0, 7}, u"1000"_s);
    cells.insert({-1, 0}, u"1000"_s);
    cells.insert({20, 0}, u"1000"_s);
    cells.insert(at("H8"), u"=SUM(B2:D4)"_s);
    cells.insert(at("H9"), u"=SUM(E1:E5)"_s);
    cells.insert(at("H10"), u"=COUNT(A1:G20)"_s);
    cells.insert(at("H11"), u"=CONCAT(D4:E5)"_s);
    cells.insert(at("H12"), u"=SUM(A5:E1)"_s);
    SheetEvaluator evaluator(20, 8, cells);
    EXPECT_EQ(shown(evaluator, "H8"), u"117"_s);
    EXPECT_EQ(shown(evaluator, "H9"), u"75"_s);
    EXPECT_EQ(shown(evaluator, "H10"), u"25"_s);
    EXPECT_EQ(shown(evaluator, "H11"), u"19202425"_s);
    EXPECT_EQ(shown(evaluator, "H12"), u"325"_s);
    EXPECT_EQ(evaluator.value({20, 0}).displayText(), u"#REF!"_s);
    EXPECT_EQ(evaluator.value({-1, 0}).displayText(), u"#REF!"_s);
}

// Every cell of the largest grid the server makes refers to the next, so one evaluation
// follows a chain through all of them; the work stack, not the call stack, holds it.
TEST(SheetEvaluator, FollowsAReferenceChainThroughTheLargestGrid)
{
    const qint32 rows = fb::core::largestSheetRows;
    const qint32 columns = fb::core::largestSheetColumns;
    Texts cells;
    for (qint32 row = 0; row < rows; ++row) {
        for (qint32 column = 0; column < columns; ++column) {
            const bool isLast = row == rows - 1 && column == columns - 1;
            const CellAddress next = column + 1 < columns ? CellAddress{row, column + 1}
                                                          : CellAddress{row + 1, 0};
            cells.insert({row, column},
                         isLast ? u"1"_s : u"=%1+1"_s.arg(fb::core::addressName(next)));
        }
    }
    SheetEvaluator evaluator(rows, columns, cells);
    EXPECT_EQ(evaluator.value({0, 0}).displayText(), QString::number(rows * columns));
    EXPECT_EQ(evaluator.value({rows / 2, 0}).displayText(),
              QString::number((rows - rows / 2) * columns));

    // Closing the chain into a ring makes every cell part of one cycle.
    cells.insert({rows - 1, columns - 1}, u"=A1"_s);
    SheetEvaluator ring(rows, columns, cells);
    EXPECT_EQ(ring.value({rows / 2, columns / 2}).displayText(), u"#CIRC!"_s);
    EXPECT_EQ(ring.value({0, 0}).displayText(), u"#CIRC!"_s);
    EXPECT_EQ(ring.value({rows - 1, columns - 1}).displayText(), u"#CIRC!"_s);
}

TEST(SheetEvaluator, EvaluatesFormulasNested100000Deep)
{
    const qsizetype depth = 100000;
    struct Case
    {
        const char *name;
        QString formula;
        const char *expected;
    };
    const Case cases[] = {
        {"parentheses", u"="_s + QString(depth, u'(') + u"1"_s + QString(depth, u')'), "1"},
        {"an unclosed parenthesis",
         u"="_s + QString(depth, u'(') + u"1"_s + QString(depth - 1, u')'), "#ERR!"},
        {"calls", u"="_s + u"ABS("_s.repeated(depth) + u"-2"_s + QString(depth, u')'), "2"},
        {"conditions", u"="_s + u"IF(1,"_s.repeated(depth) + u"3"_s + u",0)"_s.repeated(depth), "3"},
        {"signs", u"="_s + QString(depth, u'-') + u"7"_s, "7"},
        {"a long sum", u"=1"_s + u"+1"_s.repeated(depth), "100001"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        SheetEvaluator evaluator(1, 1, {{{0, 0}, c.formula}});
        EXPECT_EQ(evaluator.value({0, 0}).displayText(), QString::fromUtf8(c.expected));
    }
}

// A stored grid may claim any size; the work follows the cells that hold text, so ranges over
// the whole of a huge grid stay cheap.
TEST(SheetEvaluator, CostsNothingForTheEmptyPartOfAHugeGrid)
{
    const qint32 huge = std::numeric_limits<qint32>::max();
    const QString farthest = fb::core::addressName({huge - 1, huge - 1});
    Texts cells = texts({{"B2", "2"}, {"A4", "=A2000000000"}, {"A5", "=SUM(B1:B1000000)"}});
    cells.insert({huge - 1, huge - 1}, u"40"_s);
    cells.insert(at("A1"), u"=SUM(B1:%1)"_s.arg(farthest));
    cells.insert(at("A2"), u"=COUNT(B1:%1)"_s.arg(farthest));
    cells.insert(at("A3"), u"=%1"_s.arg(farthest));
    QElapsedTimer timer;
    timer.start();
    SheetEvaluator evaluator(huge, huge, cells);
    EXPECT_EQ(shown(evaluator, "A1"), u"42"_s);
    EXPECT_EQ(shown(evaluator, "A2"), u"2"_s);
    EXPECT_EQ(shown(evaluator, "A3"), u"40"_s);
    EXPECT_EQ(shown(evaluator, "A4"), u"0"_s);
    EXPECT_EQ(shown(evaluator, "A5"), u"2"_s);
    EXPECT_EQ(evaluator.value({huge, 0}).displayText(), u"#REF!"_s);
    EXPECT_LT(timer.elapsed(), 1000);
}

TEST(SheetEvaluator, SumsAWholeLargeGridOnceForManyFormulas)
{
    const qint32 rows = fb::core::largestSheetRows;
    const qint32 columns = fb::core::largestSheetColumns;
    Texts cells;
    for (qint32 row = 0; row < rows; ++row) {
        for (qint32 column = 1; column < columns; ++column)
            cells.insert({row, column}, u"1"_s);
    }
    // A column of totals over narrow ranges beside a wide block: each reads its own row.
    for (qint32 row = 0; row < rows; ++row)
        cells.insert({row, 0}, u"=SUM(B%1:C%1)"_s.arg(row + 1));
    cells.insert({0, 0}, u"=SUM(B1:CV1000)+SUM(A2:A1000)"_s);
    QElapsedTimer timer;
    timer.start();
    SheetEvaluator evaluator(rows, columns, cells);
    EXPECT_EQ(evaluator.value({0, 0}).displayText(),
              QString::number(rows * (columns - 1) + (rows - 1) * 2));
    EXPECT_LT(timer.elapsed(), 10000);
}

} // namespace
