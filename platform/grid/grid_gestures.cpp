#include "platform/grid/grid_gestures.h"

#include "platform/grid/column_geometry.h"
#include "platform/grid/column_model.h"
#include "platform/grid/db_grid.h"
#include "platform/toolkit/handler.h"

#include <QKeyEvent>
#include <QScrollBar>

#include <algorithm>

namespace platform {

namespace {

constexpr int dragScrollInterval = 50; ///< milliseconds between two steps while a selection is dragged beyond the view

} // namespace

GridGestures::GridGestures(TDBGridEh &grid, const ColumnModel &columns, const ColumnGeometry &geometry)
    : m_grid(grid)
    , m_columns(columns)
    , m_geometry(geometry)
    , m_dragging(Extend::No)
{
}

void GridGestures::press(QPoint position, Qt::KeyboardModifiers modifiers)
{
    const int row = m_grid.rowAt(position.y());
    m_dragging = Extend::No;
    if (row < 0 || m_grid.currentColumn() < 0)
        return;
    const bool wholeRow = position.x() < m_geometry.indicatorWidth();
    const int hit = m_geometry.columnAt(position.x());
    const int column = hit < 0 ? m_grid.currentColumn() : hit;
    const Extend extend = wholeRow ? Extend::Rows : Extend::Cells;
    if (modifiers & Qt::ShiftModifier) {
        m_grid.setCurrentCell(row, column, extend);
    } else if (modifiers & Qt::ControlModifier && wholeRow) {
        m_grid.addSelectedRow(row);
    } else if (modifiers & Qt::ControlModifier) {
        m_grid.toggleCell(row, column);
    } else {
        m_grid.setCurrentCell(row, column);
        if (wholeRow)
            m_grid.setCurrentCell(row, column, Extend::Rows);
    }
    const bool tookOut = modifiers & Qt::ControlModifier && !m_grid.isSelected(row, column);
    m_dragging = tookOut ? Extend::No : extend;
    m_dragPosition = position;
}

void GridGestures::drag(QPoint position)
{
    if (m_dragging == Extend::No)
        return;
    m_dragPosition = position;
    dragTo(position);
    if (m_grid.viewport()->rect().contains(position))
        m_dragTimer.stop();
    else if (!m_dragTimer.isActive())
        m_dragTimer.start(dragScrollInterval, this);
}

void GridGestures::release()
{
    m_dragging = Extend::No;
    m_dragTimer.stop();
}

void GridGestures::timerEvent(QTimerEvent *)
{
    guarded([&] { dragTo(m_dragPosition); });
}

void GridGestures::dragTo(QPoint position)
{
    if (m_grid.rowCount() == 0)
        return;
    const int top = m_grid.verticalScrollBar()->value();
    const int wanted = position.y() < 0 ? top - 1 : top + position.y() / m_grid.rowHeight();
    const int row = std::clamp(wanted, 0, m_grid.rowCount() - 1);
    const int x = std::min(std::max(position.x(), m_geometry.indicatorWidth()), m_geometry.contentRight() - 1);
    const int hit = m_geometry.columnAt(x);
    const int column = hit < 0 || m_dragging == Extend::Rows ? m_grid.currentColumn() : hit;
    if (row != m_grid.currentRow() || column != m_grid.currentColumn())
        m_grid.setCurrentCell(row, column, m_dragging);
}

bool GridGestures::moveByTab(const QKeyEvent &event)
{
    const bool enter = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    const bool back = event.key() == Qt::Key_Backtab || event.modifiers() & Qt::ShiftModifier;
    if (!(enter || event.key() == Qt::Key_Tab || event.key() == Qt::Key_Backtab)
        || event.modifiers() & (Qt::ControlModifier | Qt::AltModifier))
        return false;
    if (m_grid.currentRow() < 0 || m_grid.currentColumn() < 0)
        return false;
    const int step = back ? -1 : 1;
    int row = m_grid.currentRow();
    int column = m_columns.visibleFrom(m_grid.currentColumn() + step, step);
    if (column < 0) {
        row += step;
        column = back ? m_columns.visibleFrom(m_columns.count() - 1, -1) : m_columns.visibleFrom(0, 1);
    }
    if (row < 0 || row >= m_grid.rowCount())
        return enter; // Tab leaves the grid at its ends
    m_grid.setCurrentCell(row, column);
    return true;
}

bool GridGestures::moveByKey(const QKeyEvent &event)
{
    if (event.modifiers() & Qt::AltModifier)
        return false;
    const bool control = event.modifiers() & Qt::ControlModifier;
    const int lastRow = m_grid.rowCount() - 1;
    const int firstColumn = m_columns.visibleFrom(0, 1);
    const int lastColumn = m_columns.visibleFrom(m_columns.count() - 1, -1);
    int row = m_grid.currentRow();
    int column = m_grid.currentColumn();
    switch (event.key()) {
    case Qt::Key_Up:
        row = control ? 0 : row - 1;
        break;
    case Qt::Key_Down:
        row = control ? lastRow : row + 1;
        break;
    case Qt::Key_PageUp:
        row -= m_grid.pageRows();
        break;
    case Qt::Key_PageDown:
        row = std::min(row, lastRow - m_grid.pageRows()) + m_grid.pageRows();
        break;
    case Qt::Key_Left:
        column = control ? firstColumn : m_columns.visibleFrom(column - 1, -1);
        break;
    case Qt::Key_Right:
        column = control ? lastColumn : m_columns.visibleFrom(column + 1, 1);
        break;
    case Qt::Key_Home:
        column = firstColumn;
        row = control ? 0 : row;
        break;
    case Qt::Key_End:
        column = lastColumn;
        row = control ? lastRow : row;
        break;
    default:
        return false;
    }
    const Extend extend = event.modifiers() & Qt::ShiftModifier ? Extend::Cells : Extend::No;
    m_grid.setCurrentCell(row, column < 0 ? m_grid.currentColumn() : column, extend);
    return true;
}

} // namespace platform
