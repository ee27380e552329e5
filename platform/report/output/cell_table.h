#pragma once

#include "platform/report/layout/page.h"

namespace report {

/// One text of a page, as filters that write cells see it.
struct Cell {
    const Primitive *primitive = nullptr;
    int column = 0; ///< first column
    int columns = 1; ///< how many it covers
};

/// A line of cells whose texts stand side by side, from the left.
struct CellRow {
    BandKind band = BandKind::Master;
    int top = 0;
    int height = 0;
    QList<Cell> cells {};
};

/// The text of a primitive in one piece, without the breaks of wrapping.
QString plainText(const Primitive &primitive);

/// Edges that are nearer to each other than this count as one.
constexpr QSize nearby { 80, 80 };

/// The rows that the texts of a page form, from the top. The page must outlive them.
QList<CellRow> cellRows(const Page &page, const Resources &resources, int tolerance = nearby.height());
/// Finds the columns that the cells of these rows form, sets them in the cells, and returns the left edges of the columns. Cells that
/// begin at nearly the same place share a column.
QList<int> arrangeColumns(QList<CellRow> &rows);

/// Reads a report as data: the title, the column titles and the summary once, the rows of all pages, without page headers and footers.
class DataRows {
public:
    explicit DataRows(const Resources &resources, QSize tolerance = nearby);

    int columnCount() const { return int(m_lefts.size()); }
    /// In hundredths of a millimetre.
    int columnWidth(int column) const;
    /// The data rows of the next page, their cells' columns set; several texts in one column stand side by side.
    QList<CellRow> rowsOf(const Page &page);

private:
    int columnOf(int left) const;

    const Resources &m_resources;
    QSize m_tolerance;
    QList<int> m_lefts;
    int m_right = 0;
    bool m_titlesDone = false;
};

} // namespace report
