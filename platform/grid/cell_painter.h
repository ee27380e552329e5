#pragma once

#include "platform/grid/cell_parameters.h"
#include "platform/grid/grid_colors.h"

#include <QRect>

class QPainter;
class TDBGridEh;

namespace platform {

class ColumnGeometry;
class ColumnModel;
class GridFinder;
class GridSelection;
class TextPainter;
struct Column;

/// What is seen of a grid's rows at one moment.
struct CellView {
    const TDBGridEh &grid; ///< its texts, font, palette, style and focus
    const ColumnModel &columns;
    const ColumnGeometry &geometry;
    const GridSelection &selection;
    const GridFinder &finder;
    TextPainter &texts;
    const CellEvent *event; ///< null: none is called
    int topRow;
    int rowCount;
    int rowHeight; ///< pixels
    int height; ///< of the viewport, in pixels
    int currentRow; ///< -1: none
    int currentColumn;

    /// Where a row begins; at the view's edges for the rows beyond them.
    int rowTop(int row) const;
    QRect cellRect(int row, int column) const;
    CellParameters parameters(int row, int column, const GridColors &colors) const;
};

/// Paints the cells of a grid and its indicator column, nothing else. An event that throws ends the painting.
class CellPainter {
public:
    CellPainter(QPainter &painter, const CellView &view);
    void paint(const QRect &rect);

private:
    void paintNote();
    void paintCell(int row, int column);
    void paintText(QRect box, int row, int column, const CellParameters &parameters);
    void paintCheckBox(const QRect &box, bool ticked);
    void paintFound(const QRect &box, int column, const QString &text, const CellParameters &parameters);
    void paintButton(const QRect &box, const Column &column);
    void paintIndicator(const QRect &rect, int firstRow, int lastRow);

    QPainter &m_painter;
    const CellView &m_view;
    GridColors m_colors;
};

} // namespace platform
