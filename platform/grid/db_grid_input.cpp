#include "platform/grid/column_geometry.h"
#include "platform/grid/column_model.h"
#include "platform/grid/db_grid.h"
#include "platform/grid/grid_finder.h"
#include "platform/grid/grid_header.h"
#include "platform/grid/grid_selection.h"
#include "platform/grid/text_painter.h"
#include "platform/toolkit/handler.h"

#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QInputMethodEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTimerEvent>
#include <QToolTip>

namespace {

constexpr int dragScrollInterval = 50; ///< milliseconds between two steps while a selection is dragged beyond the view
constexpr int wheelNotch = 120;
constexpr int sideStepsPerNotch = 3;
constexpr int textMargins = 5;

} // namespace

void TDBGridEh::popUp(std::unique_ptr<QMenu> menu, QPoint globalPosition)
{
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu.release()->popup(globalPosition);
}

void TDBGridEh::goTo(int row, int column)
{
    const bool columnMoves = column != m_currentColumn;
    m_currentColumn = column;
    if (row != currentRow())
        dataSet()->moveTo(row); // takeRecord() follows
    if (!columnMoves)
        return;
    updateRow(m_shownRecord);
    showCurrentCell();
    Q_EMIT currentCellChanged(currentRow(), m_currentColumn);
}

void TDBGridEh::moveCurrent(int row, int column, Extend extend)
{
    if (rowCount() == 0 || m_currentColumn < 0)
        return;
    row = qBound(0, row, rowCount() - 1);
    column = qBound(0, column, m_columns->count() - 1);
    if (!m_columns->at(column).visible)
        column = m_currentColumn;
    const bool wasEmpty = m_selection->isEmpty();
    if (extend == Extend::No)
        m_selection->start(QPoint(column, row));
    else if (wasEmpty)
        m_selection->start(QPoint(m_currentColumn, currentRow()));
    goTo(row, column);
    if (extend == Extend::Cells)
        m_selection->extendTo(QPoint(column, row));
    else if (extend == Extend::Rows)
        m_selection->extendToRow(row, m_columns->count());
    if (!wasEmpty || !m_selection->isEmpty())
        announceSelection();
}

void TDBGridEh::toggleCell(int row, int column)
{
    const QPoint current(m_currentColumn, currentRow());
    if (m_selection->isEmpty() && current != QPoint(column, row))
        m_selection->add(QRect(current, QSize(1, 1)));
    m_selection->toggle(QPoint(column, row));
    goTo(row, column);
    announceSelection();
}

void TDBGridEh::selectAll()
{
    m_selection->clear();
    if (rowCount() > 0)
        m_selection->add(QRect(0, 0, m_columns->count(), rowCount()));
    announceSelection();
}

void TDBGridEh::clearSelection()
{
    if (m_selection->isEmpty())
        return;
    m_selection->clear();
    announceSelection();
}

QList<QRect> TDBGridEh::selectedRanges() const { return m_selection->ranges(); }

void TDBGridEh::announceSelection()
{
    viewport()->update();
    Q_EMIT selectionChanged();
}

bool TDBGridEh::event(QEvent *event)
{
    // Tab moves within the grid, so it must not reach the toolkit's focus chain first.
    if (event->type() == QEvent::KeyPress) {
        auto *key = static_cast<QKeyEvent *>(event);
        const bool tab = key->key() == Qt::Key_Tab || key->key() == Qt::Key_Backtab;
        bool moved = false;
        if (tab)
            guarded([&] { moved = moveByTab(*key); });
        if (moved) {
            event->accept();
            return true;
        }
    }
    return QAbstractScrollArea::event(event);
}

void TDBGridEh::keyPressEvent(QKeyEvent *event)
{
    bool done = false;
    guarded([&] { done = m_finder->takeKey(*event) || commandByKey(*event) || moveByTab(*event) || moveByKey(*event); });
    event->setAccepted(done);
}

void TDBGridEh::inputMethodEvent(QInputMethodEvent *event)
{
    guarded([&] {
        if (!event->commitString().isEmpty())
            m_finder->type(event->commitString());
    });
    event->accept();
}

QVariant TDBGridEh::inputMethodQuery(Qt::InputMethodQuery query) const
{
    if (query == Qt::ImCursorRectangle && currentRow() >= 0 && m_currentColumn >= 0)
        return cellRect(currentRow(), m_currentColumn).translated(viewport()->pos());
    return QAbstractScrollArea::inputMethodQuery(query);
}

bool TDBGridEh::commandByKey(const QKeyEvent &event)
{
    const QKeyCombination keys = event.keyCombination();
    if (keys == (Qt::CTRL | Qt::Key_A)) {
        selectAll();
        return true;
    }
    if (keys == (Qt::CTRL | Qt::Key_C) || keys == (Qt::CTRL | Qt::SHIFT | Qt::Key_C)) {
        copySelection(event.modifiers() & Qt::ShiftModifier);
        return true;
    }
    if (keys == (Qt::CTRL | Qt::Key_F)) {
        m_finder->openDialog();
        return true;
    }
    if (event.key() == Qt::Key_F3 && !(event.modifiers() & ~Qt::ShiftModifier)) {
        m_finder->findAgain(!event.modifiers());
        return true;
    }
    if (event.key() != Qt::Key_Space || currentRow() < 0 || m_currentColumn < 0)
        return false;
    m_selection->clear();
    if (event.modifiers() == Qt::ControlModifier)
        m_selection->add(QRect(m_currentColumn, 0, 1, rowCount()));
    else if (event.modifiers() == Qt::ShiftModifier)
        m_selection->add(QRect(0, currentRow(), m_columns->count(), 1));
    announceSelection();
    return true;
}

bool TDBGridEh::moveByTab(const QKeyEvent &event)
{
    const bool enter = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    const bool back = event.key() == Qt::Key_Backtab || event.modifiers() & Qt::ShiftModifier;
    if (!(enter || event.key() == Qt::Key_Tab || event.key() == Qt::Key_Backtab)
        || event.modifiers() & (Qt::ControlModifier | Qt::AltModifier))
        return false;
    if (currentRow() < 0 || m_currentColumn < 0)
        return false;
    const int step = back ? -1 : 1;
    int row = currentRow();
    int column = m_columns->visibleFrom(m_currentColumn + step, step);
    if (column < 0) {
        row += step;
        column = back ? m_columns->visibleFrom(m_columns->count() - 1, -1) : m_columns->visibleFrom(0, 1);
    }
    if (row < 0 || row >= rowCount())
        return enter; // Tab leaves the grid at its ends
    moveCurrent(row, column, Extend::No);
    return true;
}

bool TDBGridEh::moveByKey(const QKeyEvent &event)
{
    if (event.modifiers() & Qt::AltModifier)
        return false;
    const bool control = event.modifiers() & Qt::ControlModifier;
    const int lastRow = rowCount() - 1;
    const int firstColumn = m_columns->visibleFrom(0, 1);
    const int lastColumn = m_columns->visibleFrom(m_columns->count() - 1, -1);
    int row = currentRow();
    int column = m_currentColumn;
    switch (event.key()) {
    case Qt::Key_Up:
        row = control ? 0 : row - 1;
        break;
    case Qt::Key_Down:
        row = control ? lastRow : row + 1;
        break;
    case Qt::Key_PageUp:
        row -= pageRows();
        break;
    case Qt::Key_PageDown:
        row = qMin(row, lastRow - pageRows()) + pageRows();
        break;
    case Qt::Key_Left:
        column = control ? firstColumn : m_columns->visibleFrom(column - 1, -1);
        break;
    case Qt::Key_Right:
        column = control ? lastColumn : m_columns->visibleFrom(column + 1, 1);
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
    moveCurrent(row, column < 0 ? m_currentColumn : column, event.modifiers() & Qt::ShiftModifier ? Extend::Cells : Extend::No);
    return true;
}

void TDBGridEh::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        guarded([&] { press(event->pos(), event->modifiers()); });
}

void TDBGridEh::press(QPoint position, Qt::KeyboardModifiers modifiers)
{
    const int row = rowAt(position.y());
    m_dragging = Extend::No;
    if (row < 0 || m_currentColumn < 0)
        return;
    const bool wholeRow = position.x() < m_geometry->indicatorWidth();
    const int hit = m_geometry->columnAt(position.x());
    const int column = hit < 0 ? m_currentColumn : hit;
    const Extend extend = wholeRow ? Extend::Rows : Extend::Cells;
    if (modifiers & Qt::ShiftModifier) {
        moveCurrent(row, column, extend);
    } else if (modifiers & Qt::ControlModifier && wholeRow) {
        m_selection->add(QRect(0, row, m_columns->count(), 1));
        goTo(row, column);
        announceSelection();
    } else if (modifiers & Qt::ControlModifier) {
        toggleCell(row, column);
    } else {
        moveCurrent(row, column, Extend::No);
        if (wholeRow)
            moveCurrent(row, column, Extend::Rows);
    }
    const bool tookOut = modifiers & Qt::ControlModifier && !m_selection->contains(QPoint(column, row));
    m_dragging = tookOut ? Extend::No : extend;
    m_dragPosition = position;
}

void TDBGridEh::mouseMoveEvent(QMouseEvent *event)
{
    if (!(event->buttons() & Qt::LeftButton) || m_dragging == Extend::No)
        return;
    m_dragPosition = event->pos();
    guarded([&] { dragTo(m_dragPosition); });
    if (viewport()->rect().contains(m_dragPosition))
        m_dragTimer.stop();
    else if (!m_dragTimer.isActive())
        m_dragTimer.start(dragScrollInterval, this);
}

void TDBGridEh::dragTo(QPoint position)
{
    const int top = verticalScrollBar()->value();
    const int row = qBound(0, position.y() < 0 ? top - 1 : top + position.y() / m_rowHeight, rowCount() - 1);
    const int hit = m_geometry->columnAt(qBound(m_geometry->indicatorWidth(), position.x(), m_geometry->contentRight() - 1));
    const int column = hit < 0 || m_dragging == Extend::Rows ? m_currentColumn : hit;
    if (row != currentRow() || column != m_currentColumn)
        moveCurrent(row, column, m_dragging);
}

void TDBGridEh::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == m_dragTimer.timerId())
        guarded([&] { dragTo(m_dragPosition); });
    else
        QAbstractScrollArea::timerEvent(event);
}

void TDBGridEh::mouseReleaseEvent(QMouseEvent *)
{
    m_dragging = Extend::No;
    m_dragTimer.stop();
}

void TDBGridEh::mouseDoubleClickEvent(QMouseEvent *event)
{
    const int row = rowAt(event->pos().y());
    const int column = m_geometry->columnAt(event->pos().x());
    if (event->button() != Qt::LeftButton || row < 0 || column < 0)
        return;
    guarded([&] {
        moveCurrent(row, column, Extend::No);
        Q_EMIT cellDoubleClicked(row, column);
    });
}

void TDBGridEh::wheelEvent(QWheelEvent *event)
{
    if (!(event->modifiers() & Qt::ShiftModifier) || event->angleDelta().y() == 0)
        return QAbstractScrollArea::wheelEvent(event);
    QScrollBar *bar = horizontalScrollBar();
    bar->setValue(bar->value() - event->angleDelta().y() * sideStepsPerNotch * bar->singleStep() / wheelNotch);
    event->accept();
}

void TDBGridEh::contextMenuEvent(QContextMenuEvent *event)
{
    guarded([&] {
        const QPoint place = viewport()->mapFromGlobal(event->globalPos());
        const int row = rowAt(place.y());
        const int column = m_geometry->columnAt(place.x());
        const bool byMouse = event->reason() == QContextMenuEvent::Mouse;
        if (byMouse && row >= 0 && column >= 0 && !m_selection->contains(QPoint(column, row)))
            moveCurrent(row, column, Extend::No);
        const bool atCell = !byMouse && currentRow() >= 0 && m_currentColumn >= 0;
        popUp(cellMenu(), atCell ? viewport()->mapToGlobal(cellRect(currentRow(), m_currentColumn).bottomLeft()) : event->globalPos());
    });
}

bool TDBGridEh::viewportEvent(QEvent *event)
{
    if (event->type() != QEvent::ToolTip)
        return QAbstractScrollArea::viewportEvent(event);
    guarded([&] {
        const auto *help = static_cast<QHelpEvent *>(event);
        const int row = rowAt(help->pos().y());
        const int column = m_geometry->columnAt(help->pos().x());
        const QString text = column >= 0 ? cellText(row, column) : QString();
        const bool cut = column >= 0 && m_texts->width(font(), text) > cellRect(row, column).width() - textMargins;
        QToolTip::showText(help->globalPos(), cut ? text : QString(), viewport());
    });
    return true;
}

void TDBGridEh::changeEvent(QEvent *event)
{
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        arrange();
    viewport()->update();
}

void TDBGridEh::resizeEvent(QResizeEvent *event)
{
    QAbstractScrollArea::resizeEvent(event);
    arrange();
}

void TDBGridEh::focusInEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusInEvent(event);
    updateRow(m_shownRecord);
}

void TDBGridEh::focusOutEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusOutEvent(event);
    m_finder->endTyping();
    updateRow(m_shownRecord);
}
