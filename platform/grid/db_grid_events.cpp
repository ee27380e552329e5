#include "platform/grid/cell_painter.h"
#include "platform/grid/column_geometry.h"
#include "platform/grid/column_model.h"
#include "platform/grid/db_grid.h"
#include "platform/grid/grid_commands.h"
#include "platform/grid/grid_finder.h"
#include "platform/grid/grid_gestures.h"
#include "platform/grid/grid_menu.h"
#include "platform/grid/grid_selection.h"
#include "platform/grid/grid_zoom.h"
#include "platform/grid/text_painter.h"
#include "platform/toolkit/handler.h"
#include "platform/toolkit/plain_text.h"

#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QInputMethodEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QToolTip>

#include <algorithm>

using namespace platform;

namespace {

constexpr int wheelNotch = 120;
constexpr int sideStepsPerNotch = 3;
constexpr int textMargins = 5;

} // namespace

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

void TDBGridEh::setCurrentCell(int row, int column, Extend extend)
{
    if (rowCount() == 0 || m_currentColumn < 0)
        return;
    row = std::clamp(row, 0, rowCount() - 1);
    column = std::clamp(column, 0, m_columns->count() - 1);
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

void TDBGridEh::selectCurrentColumn()
{
    m_selection->clear();
    if (currentRow() >= 0 && m_currentColumn >= 0)
        m_selection->add(QRect(m_currentColumn, 0, 1, rowCount()));
    announceSelection();
}

void TDBGridEh::selectCurrentRow()
{
    m_selection->clear();
    if (currentRow() >= 0)
        m_selection->add(QRect(0, currentRow(), m_columns->count(), 1));
    announceSelection();
}

void TDBGridEh::addSelectedRow(int row)
{
    m_selection->add(QRect(0, row, m_columns->count(), 1));
    goTo(row, m_currentColumn);
    announceSelection();
}

void TDBGridEh::openCurrentCell()
{
    if (currentRow() >= 0 && m_currentColumn >= 0)
        Q_EMIT cellDoubleClicked(currentRow(), m_currentColumn);
}

bool TDBGridEh::isSelected(int row, int column) const { return m_selection->contains(QPoint(column, row)); }

QList<QRect> TDBGridEh::selectedRanges() const { return m_selection->ranges(); }

void TDBGridEh::announceSelection()
{
    viewport()->update();
    Q_EMIT selectionChanged();
}

void TDBGridEh::paintEvent(QPaintEvent *event)
{
    QPainter painter(viewport());
    try {
        CellPainter(painter, view()).paint(event->rect());
    } catch (...) {
        // A message box cannot be shown from within painting, and each repaint would show it again.
        m_cellEventFailed = true;
        QMetaObject::invokeMethod(
            this, [failure = std::current_exception()] { Application->handleException(failure); }, Qt::QueuedConnection);
        viewport()->update();
    }
}

bool TDBGridEh::event(QEvent *event)
{
    // Tab moves within the grid, so it must not reach the toolkit's focus chain first.
    if (event->type() == QEvent::KeyPress) {
        auto *key = static_cast<QKeyEvent *>(event);
        const bool tab = key->key() == Qt::Key_Tab || key->key() == Qt::Key_Backtab;
        bool moved = false;
        if (tab)
            guarded([&] { moved = m_gestures->moveByTab(*key); });
        if (moved) {
            event->accept();
            return true;
        }
    }
    return QAbstractScrollArea::event(event);
}

void TDBGridEh::keyPressEvent(QKeyEvent *event)
{
    const auto runCommand = [&] {
        const GridCommand *command = gridCommandFor(event->keyCombination());
        if (command)
            command->run(*this);
        return command != nullptr;
    };
    bool done = false;
    guarded([&] { done = m_finder->takeKey(*event) || runCommand() || m_gestures->moveByTab(*event) || m_gestures->moveByKey(*event); });
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

void TDBGridEh::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        guarded([&] { m_gestures->press(event->pos(), event->modifiers()); });
}

void TDBGridEh::mouseMoveEvent(QMouseEvent *event)
{
    if (event->buttons() & Qt::LeftButton)
        guarded([&] { m_gestures->drag(event->pos()); });
}

void TDBGridEh::mouseReleaseEvent(QMouseEvent *) { m_gestures->release(); }

void TDBGridEh::mouseDoubleClickEvent(QMouseEvent *event)
{
    const int row = rowAt(event->pos().y());
    const int column = m_geometry->columnAt(event->pos().x());
    if (event->button() != Qt::LeftButton || row < 0 || column < 0)
        return;
    guarded([&] {
        setCurrentCell(row, column);
        Q_EMIT cellDoubleClicked(row, column);
    });
}

void TDBGridEh::wheelEvent(QWheelEvent *event)
{
    if (event->modifiers() & Qt::ControlModifier) {
        stepGridZoom(event->angleDelta().y() > 0 ? 1 : event->angleDelta().y() < 0 ? -1 : 0);
        return event->accept();
    }
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
        if (byMouse && row >= 0 && column >= 0 && !isSelected(row, column))
            setCurrentCell(row, column);
        const bool atCell = !byMouse && currentRow() >= 0 && m_currentColumn >= 0;
        auto menu = cellMenu(*this);
        Q_EMIT cellMenuOpening(menu.get());
        popUp(std::move(menu), atCell ? viewport()->mapToGlobal(cellRect(currentRow(), m_currentColumn).bottomLeft()) : event->globalPos());
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
        const QString text = column >= 0 ? displayText(row, column) : QString();
        const bool cut = column >= 0 && m_texts->width(font(), text) > cellRect(row, column).width() - textMargins;
        QToolTip::showText(help->globalPos(), cut ? plainTip(text) : QString(), viewport());
    });
    return true;
}

void TDBGridEh::changeEvent(QEvent *event)
{
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        arrange();
    // A font that it inherits is the design again.
    const bool inherits = event->type() == QEvent::FontChange || event->type() == QEvent::ParentChange;
    if (inherits && gridZoom() * textScale() != 100 * 100)
        takeZoom();
    viewport()->update();
}

void TDBGridEh::resizeEvent(QResizeEvent *event)
{
    QAbstractScrollArea::resizeEvent(event);
    arrange();
}

// Nothing but the current row shows where the focus is. The toolkit would paint the frame too, and with it all that lies behind.
void TDBGridEh::focusInEvent(QFocusEvent *) { updateRow(m_shownRecord); }

void TDBGridEh::focusOutEvent(QFocusEvent *)
{
    m_finder->endTyping();
    updateRow(m_shownRecord);
}
