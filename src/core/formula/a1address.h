#pragma once

#include "core/spreadsheet.h"

#include <QString>

#include <optional>

namespace fb::core {

// The largest grid this server gives a sheet it creates. Sheets made elsewhere may be larger;
// the evaluator's work never depends on the grid's size, only on the cells that hold text.
inline constexpr qint32 largestSheetRows = 1000;
inline constexpr qint32 largestSheetColumns = 100;

// A reference as a formula or a tool argument writes it: column letters and row digits, each
// part optionally marked absolute with "$" (which does not change what it names).
struct CellReference
{
    CellAddress address;
    bool isColumnAbsolute = false;
    bool isRowAbsolute = false;
};

// Reads "B7", "$B$7" or "b7" (letters in either case) as column 2, row 7, 0-based. Row 0 and
// anything but letters followed by digits do not read. Columns and rows beyond the range of a
// 32-bit count read as the largest count, which lies outside every grid, so that a reference
// far beyond the grid is a bad reference and not a different cell.
std::optional<CellReference> parseCellReference(QStringView text);
std::optional<CellAddress> parseA1Address(QStringView text);

// "A" for column 0, "Z" for 25, "AA" for 26.
QString columnName(qint32 column);
// "B7" for row 6, column 1.
QString addressName(CellAddress address);

// Whether a cell lies inside a grid of the given size; a negative size holds no cell.
bool isInGrid(CellAddress address, qint32 rowCount, qint32 columnCount);

} // namespace fb::core
