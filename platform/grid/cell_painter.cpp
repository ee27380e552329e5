#include "platform/grid/cell_painter.h"

#include "platform/grid/column_geometry.h"
#include "platform/grid/column_model.h"
#include "platform/grid/db_grid.h"
#include "platform/grid/grid_finder.h"
#include "platform/grid/grid_selection.h"
#include "platform/grid/text_painter.h"

#include <QPainter>
#include <QStyleOptionViewItem>

#include <algorithm>

namespace platform {

namespace {

constexpr int textMargin = 3;
constexpr int buttonWidth = 16;

} // namespace

int CellView::rowTop(int row) const
{
    const qint64 top = qint64(row - topRow) * rowHeight;
    return int(std::clamp(top, qint64(-rowHeight), qint64(height)));
}

QRect CellView::cellRect(int row, int column) const
{
    return QRect(geometry.left(column), rowTop(row), geometry.right(column) - geometry.left(column), rowHeight);
}

CellParameters CellView::parameters(int row, int column, const GridColors &colors) const
{
    CellParameters parameters { colors.base, colors.text, grid.font() };
    if (event)
        (*event)(row, column, parameters);
    return parameters;
}

CellPainter::CellPainter(QPainter &painter, const CellView &view)
    : m_painter(painter)
    , m_view(view)
    , m_colors(view.grid.palette())
{
}

void CellPainter::paint(const QRect &rect)
{
    const ColumnGeometry &geometry = m_view.geometry;
    const int firstRow = m_view.topRow + rect.top() / m_view.rowHeight;
    const int lastRow = std::min(m_view.rowCount - 1, m_view.topRow + rect.bottom() / m_view.rowHeight);
    const int bottom = lastRow < firstRow ? rect.top() : m_view.rowTop(lastRow) + m_view.rowHeight;
    m_painter.fillRect(rect, m_colors.base);
    if (m_view.rowCount == 0)
        return paintNote();
    for (const ColumnGeometry::Span &span : geometry.spans(rect)) {
        m_painter.setClipRect(span.clip);
        for (int row = firstRow; row <= lastRow; ++row) {
            for (int column = span.first; column <= span.last; ++column) {
                if (m_view.columns.at(column).visible)
                    paintCell(row, column);
            }
        }
        for (int column = span.first; column <= span.last; ++column) {
            if (m_view.columns.at(column).visible)
                m_painter.fillRect(geometry.right(column) - 1, rect.top(), 1, bottom - rect.top(), m_colors.line);
        }
    }
    m_painter.setClipping(false);
    for (int row = firstRow; row <= lastRow; ++row)
        m_painter.fillRect(0, m_view.rowTop(row) + m_view.rowHeight - 1, geometry.contentRight(), 1, m_colors.line);
    if (geometry.hasFrozen())
        m_painter.fillRect(geometry.frozenRight() - 1, rect.top(), 1, bottom - rect.top(), m_colors.frozenLine);
    paintIndicator(rect, firstRow, lastRow);
}

void CellPainter::paintNote()
{
    const QRect area(0, 0, m_view.geometry.viewWidth(), m_view.height);
    m_painter.setPen(blend(m_colors.text, m_colors.base, 0.5));
    m_view.texts.draw(m_painter, area, Qt::AlignHCenter, m_view.grid.font(), m_view.grid.emptyNote());
}

void CellPainter::paintCell(int row, int column)
{
    const CellParameters parameters = m_view.parameters(row, column, m_colors);
    const QRect cell = m_view.cellRect(row, column);
    const bool current = row == m_view.currentRow;
    QColor background = m_colors.background(parameters.background);
    if (m_view.selection.contains(QPoint(column, row)))
        background = m_colors.selected(background);
    else if (current)
        background = m_colors.currentRow(background);
    m_painter.fillRect(cell, background);

    QRect box = cell.adjusted(textMargin - 1, 0, -textMargin, -1);
    const bool focused = current && column == m_view.currentColumn;
    const Column &shown = m_view.columns.at(column);
    if (focused && (shown.ellipsis || !shown.dropDownFields.isEmpty())) {
        paintButton(QRect(cell.right() - buttonWidth, cell.top(), buttonWidth, cell.height() - 1), shown);
        box.setRight(box.right() - buttonWidth);
    }
    paintText(box, row, column, parameters);
    if (focused) {
        m_painter.setPen(m_view.grid.hasFocus() ? m_colors.accent : m_colors.frozenLine);
        m_painter.setBrush(Qt::NoBrush);
        m_painter.drawRect(cell.adjusted(0, 0, -2, -2));
    }
}

void CellPainter::paintText(QRect box, int row, int column, const CellParameters &parameters)
{
    const QString text = m_view.grid.displayText(row, column);
    const Column &shown = m_view.columns.at(column);
    if (shown.isCheckBox() && (text == shown.checkedKey || text == shown.uncheckedKey))
        return paintCheckBox(box, text == shown.checkedKey);
    if (row == m_view.currentRow && column == m_view.currentColumn)
        paintFound(box, column, text, parameters);
    // A colour of the palette is dim already while the grid is disabled.
    const bool dimmed = !m_view.grid.isEnabled() && parameters.textColor != m_colors.text;
    const QColor color = m_colors.textColor(parameters.textColor);
    m_painter.setPen(dimmed ? blend(color, m_colors.background(parameters.background), 0.5) : color);
    m_view.texts.draw(m_painter, box, m_view.columns.alignment(column), parameters.font, text);
}

void CellPainter::paintCheckBox(const QRect &box, bool ticked)
{
    QStyleOptionViewItem option;
    option.initFrom(&m_view.grid);
    option.state.setFlag(QStyle::State_HasFocus, false);
    option.state |= ticked ? QStyle::State_On : QStyle::State_Off;
    const QStyle *style = m_view.grid.style();
    const int size = std::min(style->pixelMetric(QStyle::PM_IndicatorWidth, &option, &m_view.grid), box.height());
    option.rect = QStyle::alignedRect(m_view.grid.layoutDirection(), Qt::AlignCenter, QSize(size, size), box);
    style->drawPrimitive(QStyle::PE_IndicatorItemViewItemCheck, &option, &m_painter, &m_view.grid);
}

/// Marks in the current cell what it was found by.
void CellPainter::paintFound(const QRect &box, int column, const QString &text, const CellParameters &parameters)
{
    const auto [start, length] = m_view.finder.foundText(column, text);
    const int whole = m_view.texts.width(parameters.font, text);
    if (start < 0 || whole > box.width())
        return;
    const int before = m_view.texts.width(parameters.font, text.left(start));
    const int marked = m_view.texts.width(parameters.font, text.mid(start, length));
    const Qt::Alignment alignment = m_view.columns.alignment(column);
    const QRect area = QStyle::alignedRect(m_view.grid.layoutDirection(), alignment, QSize(whole, box.height()), box);
    m_painter.fillRect(area.left() + before, box.top() + 2, marked, box.height() - 4, m_colors.found);
}

/// What a read-only column with an ellipsis or a drop-down list shows in the focused cell.
void CellPainter::paintButton(const QRect &box, const Column &column)
{
    m_painter.fillRect(box, m_colors.title);
    m_painter.fillRect(box.left(), box.top(), 1, box.height(), m_colors.line);
    m_painter.setRenderHint(QPainter::Antialiasing);
    m_painter.setPen(Qt::NoPen);
    m_painter.setBrush(m_colors.mark);
    const QPointF middle = QRectF(box).center() + QPointF(0.5, 0);
    if (column.ellipsis) {
        for (int dot = -1; dot <= 1; ++dot)
            m_painter.drawEllipse(middle + QPointF(dot * 4, 2), 1.2, 1.2);
    } else {
        m_painter.drawPolygon(QPolygonF { middle + QPointF(-3.5, -2), middle + QPointF(3.5, -2), middle + QPointF(0, 2) });
    }
    m_painter.setRenderHint(QPainter::Antialiasing, false);
}

void CellPainter::paintIndicator(const QRect &rect, int firstRow, int lastRow)
{
    const int width = m_view.geometry.indicatorWidth();
    if (rect.left() >= width || lastRow < firstRow)
        return;
    const int top = m_view.rowTop(firstRow);
    const int bottom = m_view.rowTop(lastRow) + m_view.rowHeight;
    m_painter.fillRect(0, top, width, bottom - top, m_colors.title);
    m_painter.fillRect(width - 1, top, 1, bottom - top, m_colors.line);
    for (int row = firstRow; row <= lastRow; ++row)
        m_painter.fillRect(0, m_view.rowTop(row) + m_view.rowHeight - 1, width, 1, m_colors.line);
    if (m_view.currentRow < firstRow || m_view.currentRow > lastRow)
        return;
    const qreal middle = m_view.rowTop(m_view.currentRow) + (m_view.rowHeight - 1) / 2.0;
    m_painter.setRenderHint(QPainter::Antialiasing);
    m_painter.setPen(Qt::NoPen);
    m_painter.setBrush(m_colors.mark);
    m_painter.drawPolygon(QPolygonF { { 5.5, middle - 4 }, { 5.5, middle + 4 }, { 10, middle } });
    m_painter.setRenderHint(QPainter::Antialiasing, false);
}

} // namespace platform
