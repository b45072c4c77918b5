// The formula language one expression at a time: operators, precedence and signs, texts and
// comparison, every function, and how errors travel. Each formula is evaluated in a small sheet
// whose other cells the case may fill.

#include "core/formula/a1address.h"
#include "core/formula/sheetevaluator.h"

#include <QMap>

#include <gtest/gtest.h>

#include <initializer_list>
#include <utility>

using namespace Qt::StringLiterals;

using fb::core::CellAddress;
using fb::core::CellValue;

namespace {

using Cells = std::initializer_list<std::pair<const char *, const char *>>;

// The cell the formula under test is placed in, out of the way of the cells the cases fill.
const CellAddress formulaCell{99, 25}; // Z100

CellValue evaluated(const QString &formula, Cells cells = {})
{
    QMap<CellAddress, QString> texts;
    for (const auto &[name, text] : cells)
        texts.insert(*fb::core::parseA1Address(QString::fromUtf8(name)), QString::fromUtf8(text));
    texts.insert(formulaCell, formula);
    return fb::core::SheetEvaluator(100, 26, texts).value(formulaCell);
}

struct Case
{
    const char *formula;
    const char *expected;
    Cells cells = {};
};

void expectAll(std::initializer_list<Case> cases)
{
    for (const Case &c : cases) {
        SCOPED_TRACE(c.formula);
        EXPECT_EQ(evaluated(QString::fromUtf8(c.formula), c.cells).displayText(),
                  QString::fromUtf8(c.expected));
    }
}

TEST(Formula, AppliesPrecedenceLeftAssociativityAndSigns)
{
    expectAll({
        {"=1+2*3", "7"},      {"=(1+2)*3", "9"},
        {"=2*(3+4)-5", "9"},  {"=-2*3", "-6"},
        {"=2*-3", "-6"},      {"=-2*-3", "6"},
        {"=1-1-1", "-1"},     {"=8/2/2", "2"},
        {"=2--3", "5"},       {"=2-+3", "-1"},
        {"=--3", "3"},        {"=- 2 * 3", "-6"},
        {"=-(2+3)*2", "-10"}, {"=-1<0", "1"},
        {"=1+1=2", "1"},      {"=2=2=2", "0"},
        {"=3>2>1", "0"},      {"=10/4", "2.5"},
        {"=0.1+0.2", "0.3"},  {"=1/3", "0.333333333333333"},
        {"=.5+1.", "1.5"},    {"= 1 +\t2 ", "3"},
        {"=0*-1", "0"},
    });
}

TEST(Formula, RefusesMalformedExpressions)
{
    expectAll({
        {"=", "#ERR!"},       {"=*3", "#ERR!"},     {"=1+*2", "#ERR!"},    {"=1*", "#ERR!"},
        {"=<1", "#ERR!"},     {"==1", "#ERR!"},     {"=+", "#ERR!"},       {"=()", "#ERR!"},
        {"=(1", "#ERR!"},     {"=1)", "#ERR!"},     {"=1 2", "#ERR!"},     {"=2(3)", "#ERR!"},
        {"=(1,2)", "#ERR!"},  {"=1e5", "#ERR!"},    {"=1.2.3", "#ERR!"},   {"=.", "#ERR!"},
        {"=1^2", "#ERR!"},    {"=1&2", "#ERR!"},    {"=1;2", "#ERR!"},     {"=A", "#ERR!"},
        {"=A0", "#ERR!"},     {"=A1B", "#ERR!"},    {"=A1:", "#ERR!"},     {"=A1:5", "#ERR!"},
        {"=:A1", "#ERR!"},    {"=\"open", "#ERR!"}, {"=SUM(1,)", "#ERR!"}, {"=SUM(,1)", "#ERR!"},
        {"=SUM(+)", "#ERR!"}, {"=SUM(1", "#ERR!"},  {"=$SUM(1)", "#ERR!"},
    });
}

TEST(Formula, ComparesNumbersAsNumbersAndElseTextsCaseSensitively)
{
    expectAll({
        {"=1<2", "1"},
        {"=2<1", "0"},
        {"=2>=3", "0"},
        {"=3<=3", "1"},
        {"=1<>1", "0"},
        {"=\"a\"=\"A\"", "0"},
        {"=\"a\"=\"a\"", "1"},
        {"=\"a\"<\"b\"", "1"},
        {"=\"B\"<\"a\"", "1"},
        {"=\"10\"<\"9\"", "0"},
        {"=\"10\"<\"9x\"", "1"},
        {"=1<=\"1\"", "1"},
        {"=\"abc\"<>\"abd\"", "1"},
        {"=0.1+0.2=0.3", "0"},
        {"=1/4<\"a\"", "1"},
        {"=A1=0", "1"},
        {"=A1=\"\"", "1"},
        {"=A1<\"a\"", "1"},
        {"=A2=\"5\"", "1", {{"A2", "5"}}},
        {"=A2>\"10\"", "0", {{"A2", "5"}}},
    });
}

TEST(Formula, ReadsTextAsNumbersInArithmeticOnlyWhenItIsOne)
{
    expectAll({
        {"=\"abc\"+1", "#ERR!"},
        {"=\"2\"+1", "3"},
        {"=\" 2 \"+1", "3"},
        {"=-\"abc\"", "#ERR!"},
        {"=-\"4\"", "-4"},
        {"=+\"abc\"", "abc"},
        {"=\"say \"\"hi\"\"\"", "say \"hi\""},
        {"=A1+1", "1"},
        {"=A1", "0"},
        {"=A2*2", "10", {{"A2", "5"}}},
        {"=A2+0", "7", {{"A2", " 7 "}}},
        {"=A2*2", "#ERR!", {{"A2", "abc"}}},
        {"=A2", "abc", {{"A2", "abc"}}},
        {"=a2+$A$2+A$2+$a2", "4", {{"A2", "1"}}},
    });
}

TEST(Formula, ReportsDivisionByZeroAndBadReferences)
{
    expectAll({
        {"=1/0", "#DIV/0!"},
        {"=1/(2-2)", "#DIV/0!"},
        {"=1/A1", "#DIV/0!"},
        {"=\"x\"/0", "#ERR!"},
        {"=A101", "#REF!"},
        {"=AA1", "#REF!"},
        {"=ZZZZZZZZZZZZ1", "#REF!"},
        {"=A99999999999999999999", "#REF!"},
        {"=SUM(A1:A101)", "#REF!"},
        {"=SUM(A101:A1)", "#REF!"},
        {"=IF(1,1,A101)", "1"},
    });
}

// The first error among the operands wins, left to right, and travels through operators and
// functions; a malformed call is "#ERR!" whatever its arguments hold.
TEST(Formula, PropagatesTheFirstError)
{
    expectAll({
        {"=1/0+\"x\"", "#DIV/0!"},
        {"=A101+1/0", "#REF!"},
        {"=1/0+A101", "#DIV/0!"},
        {"=\"x\"+1/0", "#DIV/0!"},
        {"=-(1/0)", "#DIV/0!"},
        {"=1/0<1", "#DIV/0!"},
        {"=SUM(1,1/0)", "#DIV/0!"},
        {"=SUM(\"x\",1/0)", "#ERR!"},
        {"=SUM(A1:A3)", "#DIV/0!", {{"A1", "1"}, {"A2", "=1/0"}, {"A3", "=A101"}}},
        {"=SUM(A1:B2)", "#REF!", {{"A2", "=1/0"}, {"B1", "=A101"}}},
        {"=COUNT(A1:A2)", "#DIV/0!", {{"A2", "=1/0"}}},
        {"=ABS(1/0)", "#DIV/0!"},
        {"=UPPER(A101)", "#REF!"},
        {"=CONCAT(\"a\",1/0)", "#DIV/0!"},
        {"=MID(\"abc\",1/0,A101)", "#DIV/0!"},
        {"=FOO(1/0)", "#ERR!"},
        {"=SQRT()", "#ERR!"},
        {"=IF(1/0,1,2)", "#DIV/0!"},
    });
}

TEST(Formula, ComputesTheArithmeticFunctions)
{
    expectAll({
        {"=SUM()", "0"},
        {"=SUM(1,2,3)", "6"},
        {"=SUM(\"4\",1)", "5"},
        {"=PRODUCT()", "1"},
        {"=PRODUCT(2,3,4)", "24"},
        {"=COUNT()", "0"},
        {"=COUNT(1,\"2\",\"x\")", "2"},
        {"=AVERAGE()", "#ERR!"},
        {"=AVERAGE(1,2)", "1.5"},
        {"=MIN()", "#ERR!"},
        {"=MIN(3,1,2)", "1"},
        {"=MAX()", "#ERR!"},
        {"=MAX(-1,\"-5\")", "-1"},
        {"=AND()", "1"},
        {"=AND(1,2)", "1"},
        {"=AND(1,0)", "0"},
        {"=AND(\"x\")", "#ERR!"},
        {"=OR()", "0"},
        {"=OR(0,0)", "0"},
        {"=OR(0,3)", "1"},
        {"=NOT(0)", "1"},
        {"=NOT(5)", "0"},
        {"=NOT(A1)", "1"},
        {"=NOT()", "#ERR!"},
        {"=NOT(1,2)", "#ERR!"},
        {"=ABS(-3)", "3"},
        {"=ABS(1,2)", "#ERR!"},
        {"=INT(-1.5)", "-2"},
        {"=INT(1.5)", "1"},
        {"=SQRT(9)", "3"},
        {"=SQRT(-1)", "#ERR!"},
        {"=POWER(2,10)", "1024"},
        {"=POWER(2)", "#ERR!"},
        {"=POWER(0,-1)", "#ERR!"},
        {"=POWER(-8,0.5)", "#ERR!"},
        {"=POWER(10,400)", "#ERR!"},
        {"=MOD(5,0)", "#ERR!"},
        {"=MOD(-1,3)", "2"},
        {"=MOD(5,3)", "2"},
        {"=MOD(5,-3)", "-1"},
        {"=MOD(5.5,2)", "1.5"},
        {"=ROUND(2.5)", "3"},
        {"=ROUND(-2.5)", "-3"},
        {"=ROUND(1.2345,2)", "1.23"},
        {"=ROUND(1.2345,2.9)", "1.23"},
        {"=ROUND(1234,-2)", "1200"},
        {"=ROUND(1.5,400)", "1.5"},
        {"=ROUND(5,-400)", "0"},
        {"=ROUND(1,2,3)", "#ERR!"},
        {"=ROUND()", "#ERR!"},
        {"=sum(1,2)+Max(3)", "6"},
        {"=FOO(1)", "#ERR!"},
        {"=POWER(10,308)*10", "#ERR!"},
    });
}

// In ranges and through references only numbers count; a value typed into the formula is read
// like an operand of arithmetic.
TEST(Formula, SkipsTextAndBlankCellsInRanges)
{
    const Cells column{{"A1", "Heading"}, {"A2", "1"}, {"A4", "2"}, {"A5", "=\"3\""}};
    expectAll({
        {"=SUM(A1:A5)", "3", column},
        {"=SUM(A5:A1)", "3", column},
        {"=COUNT(A1:A5)", "2", column},
        {"=AVERAGE(A1:A5)", "1.5", column},
        {"=MIN(A1:A5)", "1", column},
        {"=MAX(A1:A5)", "2", column},
        {"=PRODUCT(A1:A5,3)", "6", column},
        {"=AND(A1:A5)", "1", column},
        {"=OR(A1:A1)", "0", column},
        {"=SUM(A1)", "0", column},
        {"=COUNT(A1,A2,A3)", "1", column},
        {"=SUM(A5)", "0", column},
        {"=SUM(A5+0)", "3", column},
        {"=AVERAGE(B1:B9)", "#DIV/0!"},
        {"=MIN(B1:B9)", "#ERR!"},
        {"=MAX(A1,A3)", "#ERR!", column},
        {"=A1:A2", "#ERR!"},
        {"=A1:A2+1", "#ERR!"},
        {"=ABS(A1:A2)", "#ERR!"},
        {"=SUM(IF(1,A1:A5,0))", "3", column},
    });
}

// Only the branch IF returns is evaluated, so an error or a cycle in the other does not count.
TEST(Formula, EvaluatesOnlyTheBranchIfChooses)
{
    expectAll({
        {"=IF(1,\"yes\",\"no\")", "yes"},
        {"=IF(0,\"yes\",\"no\")", "no"},
        {"=IF(\"2\",1,2)", "1"},
        {"=IF(A1,1,2)", "2"},
        {"=IF(\"x\",1,2)", "#ERR!"},
        {"=IF(1,5,1/0)", "5"},
        {"=IF(0,1/0,5)", "5"},
        {"=IF(1,2,FOO())", "2"},
        {"=IF(1,2,Z100)", "2"},
        {"=IF(0,Z100,2)", "2"},
        {"=IF(1>2,\"a\",\"b\")", "b"},
        {"=IF(0,1,IF(1,2,3))", "2"},
        {"=IF(1,IF(0,1,2),3)+1", "3"},
        {"=IF(1,3,4)*2", "6"},
        {"=1+IF(0,1,2)*3", "7"},
        {"=IF(1,2)", "#ERR!"},
        {"=IF(1,2,3,4)", "#ERR!"},
        {"=IF()", "#ERR!"},
        {"=SUM(IF(1,2,3),IF(0,2,3))", "5"},
    });
}

TEST(Formula, AppliesTheTextFunctions)
{
    expectAll({
        {"=CONCAT(\"a\",1,\"b\")", "a1b"},
        {"=CONCAT()", "#ERR!"},
        {"=CONCAT(0.1+0.2,\"|\",1/3)", "0.3|0.333333333333333"},
        {"=CONCAT(A1,\"x\")", "x"},
        {"=CONCAT(A1:B2)", "abc", {{"A1", "a"}, {"B1", "b"}, {"B2", "c"}}},
        {"=LEFT(\"abc\")", "a"},
        {"=LEFT(\"abc\",2)", "ab"},
        {"=LEFT(\"abc\",10)", "abc"},
        {"=LEFT(\"abc\",1.9)", "a"},
        {"=LEFT(\"abc\",-1)", "#ERR!"},
        {"=LEFT(\"abc\",\"x\")", "#ERR!"},
        {"=LEFT(12345,2)", "12"},
        {"=LEFT(\"\")", ""},
        {"=LEFT(\"abc\",1,2)", "#ERR!"},
        {"=RIGHT(\"abc\")", "c"},
        {"=RIGHT(\"abc\",2)", "bc"},
        {"=RIGHT(\"abc\",0)", ""},
        {"=RIGHT(\"abc\",1e0)", "#ERR!"},
        {"=MID(\"abcdef\",2,3)", "bcd"},
        {"=MID(\"abcdef\",5,10)", "ef"},
        {"=MID(\"abc\",5,1)", ""},
        {"=MID(\"abc\",0,1)", "#ERR!"},
        {"=MID(\"abc\",2,-1)", "#ERR!"},
        {"=MID(\"abc\",2)", "#ERR!"},
        {"=LEN(\"abc\")", "3"},
        {"=LEN(12.5)", "4"},
        {"=LEN(A1)", "0"},
        {"=LEN(\"\")", "0"},
        {"=LEN(\"h\u00e9\U0001F600\")", "3"},
        {"=LEFT(\"\U0001F600x\",1)", "\U0001F600"},
        {"=UPPER(\"abc\u00e9\")", "ABC\u00c9"},
        {"=LOWER(\"ABC\")", "abc"},
        {"=TRIM(\"  a   b  \")", "a b"},
        {"=LEN(A1:A2)", "#ERR!"},
        {"=UPPER()", "#ERR!"},
    });
}

TEST(Formula, GivesTextResultsAsTextAndNumbersAsNumbers)
{
    EXPECT_TRUE(evaluated(u"=\"5\""_s).isText());
    EXPECT_TRUE(evaluated(u"=LEFT(55,1)"_s).isText());
    EXPECT_TRUE(evaluated(u"=LEN(\"ab\")"_s).isNumber());
    EXPECT_TRUE(evaluated(u"=\"5\"+0"_s).isNumber());
    // A formula that only passes on a blank cell shows 0.
    EXPECT_EQ(evaluated(u"=A1"_s), CellValue::number(0));
}

} // namespace
