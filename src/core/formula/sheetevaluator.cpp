#include "core/formula/sheetevaluator.h"

#include "core/formula/a1address.h"
#include "core/formula/formulafunctions.h"
#include "core/formula/formulaoperators.h"
#include "core/formula/formulaparser.h"

#include <algorithm>
#include <vector>

namespace fb::core {

namespace {

using Code = FormulaOperation::Code;
using OperandKind = FormulaOperand::Kind;

CellValue circular()
{
    return CellValue::error(CellError::Circular);
}

CellValue malformed()
{
    return CellValue::error(CellError::Malformed);
}

// What a run knows of one cell that holds text.
struct Slot
{
    enum class State { Unvisited, Active, Done };

    State state = State::Unvisited;
    // Still part of a group of cells whose cycles are being explored.
    bool isOnStack = false;
    // The order in which formula cells were entered, and the lowest order of a cell still
    // being explored that this one reaches: the bookkeeping that finds cycles.
    qsizetype order = 0;
    qsizetype low = 0;
    CellValue value;
};

// A formula cell being evaluated: its compiled formula, how far it has run, and its operands.
struct Frame
{
    qsizetype cell = 0;
    FormulaProgram program;
    qsizetype next = 0;
    std::vector<FormulaOperand> operands;
    // Where the walk through a range stopped to evaluate a cell in it; -1 when no walk is
    // under way.
    qsizetype rangeCursor = -1;
    bool refersToItself = false;
};

// A single value where an operator needs one: a range there is an error.
CellValue single(const FormulaOperand &operand)
{
    return operand.kind == OperandKind::Range ? malformed() : operand.value;
}

FormulaOperand valueOperand(CellValue value)
{
    return {OperandKind::Value, std::move(value), {}};
}

} // namespace

CellValue literalValue(const QString &text)
{
    if (const std::optional<double> number = readNumber(text))
        return CellValue::number(*number);
    return CellValue::text(text);
}

class SheetEvaluator::Run final : public RangeSource
{
public:
    Run(qint32 rowCount, qint32 columnCount, const QMap<CellAddress, QString> &cells)
        : m_rowCount(rowCount)
        , m_columnCount(columnCount)
    {
        // Only cells inside the grid can be reached; the map is ordered by row, then column.
        for (auto it = cells.cbegin(); it != cells.cend(); ++it) {
            if (!it.value().isEmpty() && isInGrid(it.key(), rowCount, columnCount)) {
                m_addresses.push_back(it.key());
                m_texts.push_back(it.value());
            }
        }
        m_slots.resize(m_addresses.size());
    }

    CellValue value(CellAddress address)
    {
        if (!isInGrid(address, m_rowCount, m_columnCount))
            return CellValue::error(CellError::BadReference);
        const qsizetype cell = indexOf(address);
        if (cell < 0)
            return CellValue::empty();
        if (m_slots[std::size_t(cell)].state == Slot::State::Unvisited && enter(cell)) {
            while (!m_frames.empty())
                runTopFrame();
        }
        return m_slots[std::size_t(cell)].value;
    }

    void visit(const CellRange &range,
               const std::function<bool(const CellValue &)> &visitor) override
    {
        for (qsizetype cell = nextIn(range, firstCandidate(range)); cell < cellCount();
             cell = nextIn(range, cell + 1)) {
            if (!visitor(settledValue(cell)))
                return;
        }
    }

private:
    qsizetype cellCount() const { return qsizetype(m_addresses.size()); }

    Slot &slot(qsizetype cell) { return m_slots[std::size_t(cell)]; }

    qsizetype lowerBound(CellAddress address) const
    {
        return std::lower_bound(m_addresses.cbegin(), m_addresses.cend(), address)
               - m_addresses.cbegin();
    }

    qsizetype indexOf(CellAddress address) const
    {
        const qsizetype at = lowerBound(address);
        return at < cellCount() && m_addresses[std::size_t(at)] == address ? at : -1;
    }

    qsizetype firstCandidate(const CellRange &range) const { return lowerBound(range.first); }

    // The first cell holding text at or after `cell` that lies in the range, or the cell count.
    // Cells of a row outside the range's columns are skipped by searching, so a narrow range
    // over a wide sheet does not step through every cell of its rows.
    qsizetype nextIn(const CellRange &range, qsizetype cell) const
    {
        while (cell < cellCount()) {
            const CellAddress at = m_addresses[std::size_t(cell)];
            if (at.row > range.last.row)
                return cellCount();
            if (at.row < range.first.row)
                cell = lowerBound(range.first);
            else if (at.column < range.first.column)
                cell = lowerBound({at.row, range.first.column});
            else if (at.column > range.last.column)
                cell = lowerBound({at.row + 1, range.first.column});
            else
                return cell;
        }
        return cellCount();
    }

    // Begins a cell's evaluation. A literal, and a formula that does not parse, are settled at
    // once; a formula gets a frame on the work stack. Says whether a frame was pushed.
    bool enter(qsizetype cell)
    {
        const QString &text = m_texts[std::size_t(cell)];
        Slot &entered = slot(cell);
        if (!isFormula(text)) {
            entered.value = literalValue(text);
            entered.state = Slot::State::Done;
            return false;
        }
        std::optional<FormulaProgram> program = parseFormula(QStringView(text).sliced(1));
        if (!program) {
            entered.value = malformed();
            entered.state = Slot::State::Done;
            return false;
        }
        entered.state = Slot::State::Active;
        entered.isOnStack = true;
        entered.order = entered.low = m_nextOrder++;
        m_component.push_back(cell);
        m_frames.push_back({cell, std::move(*program), 0, {}, -1, false});
        return true;
    }

    // The frame `frame` needs the value of `cell`. Nothing when the cell's own evaluation had
    // to begin first: the frame then asks again once that is done.
    std::optional<CellValue> meet(std::size_t frame, qsizetype cell)
    {
        Slot &met = slot(cell);
        if (met.state == Slot::State::Unvisited) {
            if (enter(cell))
                return std::nullopt;
            return met.value;
        }
        if (met.isOnStack) {
            // The cell reaches back to a cell still being explored, so this frame does too:
            // they lie on one cycle.
            Slot &meeting = slot(m_frames[frame].cell);
            meeting.low = std::min(meeting.low, met.low);
            if (cell == m_frames[frame].cell)
                m_frames[frame].refersToItself = true;
        }
        return met.state == Slot::State::Active ? circular() : met.value;
    }

    // The value of a cell whose evaluation was begun: a cell still running is on a cycle.
    CellValue settledValue(qsizetype cell)
    {
        const Slot &settled = slot(cell);
        if (settled.state == Slot::State::Done)
            return settled.value;
        return settled.state == Slot::State::Active ? circular() : malformed();
    }

    // Makes sure every cell of a range has been evaluated before a function reads it,
    // resuming where the last attempt stopped. False when a cell's evaluation had to begin.
    bool settleRange(std::size_t frame, const CellRange &range)
    {
        qsizetype cell = m_frames[frame].rangeCursor;
        for (cell = cell >= 0 ? cell : nextIn(range, firstCandidate(range)); cell < cellCount();
             cell = nextIn(range, cell + 1)) {
            if (!meet(frame, cell)) {
                m_frames[frame].rangeCursor = cell;
                return false;
            }
        }
        m_frames[frame].rangeCursor = -1;
        return true;
    }

    bool isRangeInGrid(const CellRange &range) const
    {
        return isInGrid(range.first, m_rowCount, m_columnCount)
               && isInGrid(range.last, m_rowCount, m_columnCount);
    }

    // Runs the top frame until it is done or needs a cell that has not been evaluated yet.
    void runTopFrame()
    {
        const std::size_t at = m_frames.size() - 1;
        while (m_frames[at].next < qsizetype(m_frames[at].program.operations.size())) {
            const FormulaOperation operation
                = m_frames[at].program.operations[std::size_t(m_frames[at].next)];
            if (!step(at, operation))
                return;
        }
        leave();
    }

    // One operation of a frame. False when it must wait for a cell; it runs again afterwards.
    bool step(std::size_t at, const FormulaOperation &operation)
    {
        switch (operation.code) {
        case Code::Number:
            push(at, valueOperand(CellValue::number(operation.number)));
            break;
        case Code::Text:
            push(at, valueOperand(CellValue::text(
                         m_frames[at].program.texts[std::size_t(operation.index)])));
            break;
        case Code::Reference: {
            const CellAddress address = operation.range.first;
            if (!isInGrid(address, m_rowCount, m_columnCount)) {
                push(at, valueOperand(CellValue::error(CellError::BadReference)));
                break;
            }
            const qsizetype cell = indexOf(address);
            std::optional<CellValue> value = cell < 0 ? CellValue::empty() : meet(at, cell);
            if (!value)
                return false;
            push(at, {OperandKind::Reference, std::move(*value), {}});
            break;
        }
        case Code::Range:
            if (!isRangeInGrid(operation.range)) {
                push(at, valueOperand(CellValue::error(CellError::BadReference)));
                break;
            }
            if (!settleRange(at, operation.range))
                return false;
            push(at, {OperandKind::Range, CellValue(), operation.range});
            break;
        case Code::Negate:
            push(at, valueOperand(negate(single(pop(at)))));
            break;
        case Code::Binary: {
            const CellValue right = single(pop(at));
            const CellValue left = single(pop(at));
            push(at, valueOperand(applyBinary(operation.op, left, right)));
            break;
        }
        case Code::Call:
            call(at, operation);
            break;
        case Code::Branch:
            branch(at, operation);
            return true;
        case Code::Jump:
            m_frames[at].next = operation.index;
            return true;
        case Code::Nothing:
            break;
        }
        ++m_frames[at].next;
        return true;
    }

    void push(std::size_t at, FormulaOperand operand)
    {
        m_frames[at].operands.push_back(std::move(operand));
    }

    // The parser only builds programs whose operations find their operands; an empty stack
    // would be a broken program and reads as a malformed formula rather than a crash.
    FormulaOperand pop(std::size_t at)
    {
        std::vector<FormulaOperand> &operands = m_frames[at].operands;
        if (operands.empty())
            return valueOperand(malformed());
        FormulaOperand operand = std::move(operands.back());
        operands.pop_back();
        return operand;
    }

    void call(std::size_t at, const FormulaOperation &operation)
    {
        std::vector<FormulaOperand> &operands = m_frames[at].operands;
        if (operation.count > qsizetype(operands.size())) {
            operands.clear();
            push(at, valueOperand(malformed()));
            return;
        }
        const auto first = operands.end() - operation.count;
        CellValue result = callFunction(operation.function,
                                        std::span<const FormulaOperand>(first, operands.end()),
                                        *this);
        operands.erase(first, operands.end());
        push(at, valueOperand(std::move(result)));
    }

    // IF's condition. Only the chosen result is evaluated afterwards, so an error or a cycle in
    // the other one does not matter; an error in the condition is IF's result, and then
    // neither is evaluated.
    void branch(std::size_t at, const FormulaOperation &operation)
    {
        const NumberOperand condition = numberOperand(single(pop(at)));
        Frame &frame = m_frames[at];
        if (condition.failure) {
            push(at, valueOperand(*condition.failure));
            frame.next = operation.end;
        } else {
            frame.next = condition.number != 0 ? frame.next + 1 : operation.index;
        }
    }

    // Finishes the top frame: its cell takes the formula's result, or "#CIRC!" when it lies on
    // a cycle, and a cell that closes a group of cycles releases the group.
    void leave()
    {
        Frame &frame = m_frames.back();
        Slot &left = slot(frame.cell);
        CellValue result = frame.operands.size() == 1 ? single(frame.operands.front())
                                                      : malformed();
        // A formula that only passes on a blank cell shows 0, as spreadsheets do.
        if (result.isEmpty())
            result = CellValue::number(0);
        const bool isInCycle = frame.refersToItself || left.low < left.order;
        left.value = isInCycle ? circular() : std::move(result);
        left.state = Slot::State::Done;
        if (left.low == left.order) {
            qsizetype released = 0;
            qsizetype cell = -1;
            do {
                cell = m_component.back();
                m_component.pop_back();
                slot(cell).isOnStack = false;
                ++released;
            } while (cell != frame.cell);
            if (released > 1)
                left.value = circular();
        }
        m_frames.pop_back();
    }

    qint32 m_rowCount = 0;
    qint32 m_columnCount = 0;
    std::vector<CellAddress> m_addresses;
    std::vector<QString> m_texts;
    std::vector<Slot> m_slots;
    std::vector<Frame> m_frames;
    // The cells whose cycles are still being explored, in the order they were entered.
    std::vector<qsizetype> m_component;
    qsizetype m_nextOrder = 0;
};

SheetEvaluator::SheetEvaluator(qint32 rowCount, qint32 columnCount,
                               const QMap<CellAddress, QString> &cells)
    : m_run(std::make_unique<Run>(rowCount, columnCount, cells))
{}

SheetEvaluator::SheetEvaluator(const Spreadsheet &sheet)
    : SheetEvaluator(sheet.rowCount(), sheet.columnCount(), sheet.cells())
{}

SheetEvaluator::~SheetEvaluator() = default;

CellValue SheetEvaluator::value(CellAddress address)
{
    return m_run->value(address);
}

CellValue evaluateCell(const Spreadsheet &sheet, CellAddress address)
{
    return SheetEvaluator(sheet).value(address);
}

} // namespace fb::core
