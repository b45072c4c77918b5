#pragma once

#include "core/contentobject.h"

#include <QMap>

#include <compare>

namespace fb::core {

// A cell position, 0-based as stored: row 0, column 0 is the cell the formula language
// calls A1.
struct CellAddress
{
    qint32 row = 0;
    qint32 column = 0;

    auto operator<=>(const CellAddress &) const = default;
};

// The styling of one cell. Colours are kept as the stored text ("#RRGGBB", or empty for the
// default) so that they are written back exactly as read.
struct CellFormat
{
    bool bold = false;
    bool italic = false;
    bool underline = false;
    bool strikeOut = false;
    QString fontFamily;
    double fontPointSize = 0; // 0 means the sheet's default size
    QString textColor;
    QString backgroundColor;
    CellAlignment alignment = CellAlignment::Default;
    NumberFormat numberFormat = NumberFormat::General;
    qint32 decimalPlaces = 2;

    bool operator==(const CellFormat &) const = default;
};

// A grid of raw cell texts (literals, or formulas starting with "="), with styling.
class Spreadsheet final : public ContentObject
{
public:
    static constexpr ObjectType staticType = ObjectType::Spreadsheet;

    explicit Spreadsheet(const QUuid &id = QUuid::createUuid());
    explicit Spreadsheet(const QString &title, const QUuid &id = QUuid::createUuid());
    ~Spreadsheet() override;

    const QString &title() const { return m_title; }
    void setTitle(const QString &title)
    {
        m_title = title;
        markChanged();
    }

    qint32 rowCount() const { return m_rowCount; }
    void setRowCount(qint32 count)
    {
        m_rowCount = count;
        markChanged();
    }

    qint32 columnCount() const { return m_columnCount; }
    void setColumnCount(qint32 count)
    {
        m_columnCount = count;
        markChanged();
    }

    // Only cells with text are held; a missing cell is blank.
    const QMap<CellAddress, QString> &cells() const { return m_cells; }
    void setCells(const QMap<CellAddress, QString> &cells)
    {
        m_cells = cells;
        markChanged();
    }
    QString cellText(CellAddress address) const { return m_cells.value(address); }
    // Setting an empty text removes the cell, so a cleared cell leaves nothing behind.
    void setCellText(CellAddress address, const QString &text);

    const QMap<CellAddress, CellFormat> &formats() const { return m_formats; }
    void setFormats(const QMap<CellAddress, CellFormat> &formats)
    {
        m_formats = formats;
        markChanged();
    }

    // Sizes of the columns and rows that differ from the default, by 0-based index.
    const QMap<qint32, double> &columnWidths() const { return m_columnWidths; }
    void setColumnWidths(const QMap<qint32, double> &widths)
    {
        m_columnWidths = widths;
        markChanged();
    }

    const QMap<qint32, double> &rowHeights() const { return m_rowHeights; }
    void setRowHeights(const QMap<qint32, double> &heights)
    {
        m_rowHeights = heights;
        markChanged();
    }

    const QUuid &linkedCategoryId() const { return m_linkedCategoryId; }
    void setLinkedCategoryId(const QUuid &id)
    {
        m_linkedCategoryId = id;
        markChanged();
    }

private:
    QString m_title;
    qint32 m_rowCount = 0;
    qint32 m_columnCount = 0;
    QMap<CellAddress, QString> m_cells;
    QMap<CellAddress, CellFormat> m_formats;
    QMap<qint32, double> m_columnWidths;
    QMap<qint32, double> m_rowHeights;
    QUuid m_linkedCategoryId;
};

} // namespace fb::core
