#include "platform/grid/column_geometry.h"
#include "platform/grid/column_model.h"
#include "platform/grid/db_grid.h"
#include "platform/grid/grid_colors.h"
#include "platform/grid/grid_finder.h"
#include "platform/grid/grid_header.h"
#include "platform/grid/grid_selection.h"
#include "platform/grid/text_painter.h"
#include "platform/toolkit/handler.h"

#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyleOptionViewItem>

namespace {

constexpr int textMargin = 3;
constexpr int buttonWidth = 16;

/// What a read-only column with an ellipsis or a drop-down list shows in the focused cell.
void paintButton(QPainter &painter, const QRect &box, bool ellipsis, const GridColors &colors)
{
    painter.fillRect(box, colors.title);
    painter.fillRect(box.left(), box.top(), 1, box.height(), colors.line);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colors.mark);
    const QPointF middle = QRectF(box).center() + QPointF(0.5, 0);
    if (ellipsis) {
        for (int dot = -1; dot <= 1; ++dot)
            painter.drawEllipse(middle + QPointF(dot * 4, 2), 1.2, 1.2);
    } else {
        painter.drawPolygon(QPolygonF { middle + QPointF(-3.5, -2), middle + QPointF(3.5, -2), middle + QPointF(0, 2) });
    }
    painter.setRenderHint(QPainter::Antialiasing, false);
}

} // namespace

void TDBGridEh::paintEvent(QPaintEvent *event)
{
    QPainter painter(viewport());
    const GridColors colors(palette());
    painter.fillRect(event->rect(), colors.base);
    try {
        paintRows(painter, event->rect(), colors);
    } catch (...) {
        // A message box cannot be shown from within painting, and each repaint would show it again.
        m_cellEventFailed = true;
        QMetaObject::invokeMethod(
            this, [failure = std::current_exception()] { Application->handleException(failure); }, Qt::QueuedConnection);
        viewport()->update();
    }
}

void TDBGridEh::paintRows(QPainter &painter, const QRect &rect, const GridColors &colors) const
{
    const int top = verticalScrollBar()->value();
    const int firstRow = top + rect.top() / m_rowHeight;
    const int lastRow = qMin(rowCount() - 1, top + rect.bottom() / m_rowHeight);
    const int bottom = lastRow < firstRow ? rect.top() : rowTop(lastRow) + m_rowHeight;
    for (const ColumnGeometry::Span &span : m_geometry->spans(rect)) {
        painter.setClipRect(span.clip);
        for (int row = firstRow; row <= lastRow; ++row) {
            for (int column = span.first; column <= span.last; ++column) {
                if (m_columns->at(column).visible)
                    paintCell(painter, row, column, colors);
            }
        }
        for (int column = span.first; column <= span.last; ++column) {
            if (m_columns->at(column).visible)
                painter.fillRect(m_geometry->right(column) - 1, rect.top(), 1, bottom - rect.top(), colors.line);
        }
    }
    painter.setClipping(false);
    for (int row = firstRow; row <= lastRow; ++row)
        painter.fillRect(0, rowTop(row) + m_rowHeight - 1, m_geometry->contentRight(), 1, colors.line);
    if (m_geometry->hasFrozen())
        painter.fillRect(m_geometry->frozenRight() - 1, rect.top(), 1, bottom - rect.top(), colors.frozenLine);
    paintIndicator(painter, rect, firstRow, lastRow, colors);
}

void TDBGridEh::paintCell(QPainter &painter, int row, int column, const GridColors &colors) const
{
    const CellParameters parameters = cellParameters(row, column, colors);
    const QRect cell = cellRect(row, column);
    const bool current = row == m_shownRecord;
    QColor background = parameters.background;
    if (m_selection->contains(QPoint(column, row)))
        background = colors.selected(background);
    else if (current)
        background = colors.currentRow(background);
    painter.fillRect(cell, background);

    QRect box = cell.adjusted(textMargin - 1, 0, -textMargin, -1);
    const bool focused = current && column == m_currentColumn;
    const Column &shown = m_columns->at(column);
    if (focused && (shown.ellipsis || !shown.dropDownFields.isEmpty())) {
        paintButton(painter, QRect(cell.right() - buttonWidth, cell.top(), buttonWidth, cell.height() - 1), shown.ellipsis, colors);
        box.setRight(box.right() - buttonWidth);
    }
    paintCellText(painter, box, row, column, parameters);
    if (focused) {
        painter.setPen(hasFocus() ? colors.accent : colors.frozenLine);
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(cell.adjusted(0, 0, -2, -2));
    }
}

void TDBGridEh::paintCellText(QPainter &painter, QRect box, int row, int column, const CellParameters &parameters) const
{
    const QString text = cellText(row, column);
    const Column &shown = m_columns->at(column);
    if (shown.isCheckBox() && (text == shown.checkedKey || text == shown.uncheckedKey)) {
        QStyleOptionViewItem option;
        option.initFrom(this);
        option.state.setFlag(QStyle::State_HasFocus, false);
        option.state |= text == shown.checkedKey ? QStyle::State_On : QStyle::State_Off;
        const int size = qMin(style()->pixelMetric(QStyle::PM_IndicatorWidth, &option, this), box.height());
        option.rect = QStyle::alignedRect(layoutDirection(), Qt::AlignCenter, QSize(size, size), box);
        style()->drawPrimitive(QStyle::PE_IndicatorItemViewItemCheck, &option, &painter, this);
        return;
    }
    if (row == m_shownRecord && column == m_currentColumn)
        paintFound(painter, box, column, text, parameters);
    const bool dimmed = !isEnabled() && parameters.textColor != palette().color(QPalette::Text); // the palette's own is dim already
    painter.setPen(dimmed ? blend(parameters.textColor, parameters.background, 0.5) : parameters.textColor);
    m_texts->draw(painter, box, m_columns->alignment(column), parameters.font, text);
}

/// Marks in the current cell what it was found by.
void TDBGridEh::paintFound(QPainter &painter, const QRect &box, int column, const QString &text, const CellParameters &parameters) const
{
    const auto [place, length] = m_finder->foundPlace(column, text);
    const int whole = m_texts->width(parameters.font, text);
    if (place < 0 || whole > box.width())
        return;
    const int before = m_texts->width(parameters.font, text.left(place));
    const int marked = m_texts->width(parameters.font, text.mid(place, length));
    const QRect area = QStyle::alignedRect(layoutDirection(), m_columns->alignment(column), QSize(whole, box.height()), box);
    painter.fillRect(area.left() + before, box.top() + 2, marked, box.height() - 4, GridColors(palette()).found);
}

void TDBGridEh::paintIndicator(QPainter &painter, const QRect &rect, int firstRow, int lastRow, const GridColors &colors) const
{
    const int width = m_geometry->indicatorWidth();
    if (rect.left() >= width || lastRow < firstRow)
        return;
    const int top = rowTop(firstRow);
    painter.fillRect(0, top, width, rowTop(lastRow) + m_rowHeight - top, colors.title);
    painter.fillRect(width - 1, top, 1, rowTop(lastRow) + m_rowHeight - top, colors.line);
    for (int row = firstRow; row <= lastRow; ++row)
        painter.fillRect(0, rowTop(row) + m_rowHeight - 1, width, 1, colors.line);
    if (m_shownRecord < firstRow || m_shownRecord > lastRow)
        return;
    const qreal middle = rowTop(m_shownRecord) + (m_rowHeight - 1) / 2.0;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colors.mark);
    painter.drawPolygon(QPolygonF { { 5.5, middle - 4 }, { 5.5, middle + 4 }, { 10, middle } });
    painter.setRenderHint(QPainter::Antialiasing, false);
}
