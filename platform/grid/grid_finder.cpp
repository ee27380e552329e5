#include "platform/grid/grid_finder.h"

#include "platform/grid/copied_cells.h"
#include "platform/grid/db_grid.h"
#include "platform/grid/find_dialog.h"
#include "platform/toolkit/handler.h"

#include <QKeyEvent>
#include <QScopedValueRollback>

namespace platform {

GridFinder::GridFinder(TDBGridEh &grid)
    : m_grid(grid)
    , m_box(&grid)
{
    m_box.setFrameStyle(QFrame::StyledPanel);
    m_box.setAutoFillBackground(true);
    m_box.setContentsMargins(4, 2, 4, 2);
    m_box.setTextFormat(Qt::PlainText);
    m_box.hide();
    handle(&grid, &TDBGridEh::currentCellChanged, this, [this] {
        if (m_moving)
            return;
        endTyping();
        m_foundTitle = -1;
        m_grid.markTitle(-1);
    });
}

void GridFinder::openDialog()
{
    endTyping();
    if (!m_dialog)
        m_dialog = new FindDialog(m_grid, *this);
    m_dialog->begin();
}

bool GridFinder::moveTo(std::optional<QPoint> cell)
{
    if (!cell)
        return false;
    const QScopedValueRollback moving(m_moving, true);
    const bool title = cell->y() == titleRow;
    m_foundTitle = title ? cell->x() : -1;
    m_grid.markTitle(m_foundTitle);
    m_grid.setCurrentCell(title ? m_grid.currentRow() : cell->y(), cell->x());
    return true;
}

bool GridFinder::find(const GridSearch &search, SearchDirection direction)
{
    m_last = search;
    const QPoint start = m_foundTitle >= 0 ? QPoint(m_foundTitle, titleRow) : QPoint(m_grid.currentColumn(), m_grid.currentRow());
    return moveTo(findCell(m_grid, search, start, direction));
}

void GridFinder::findAgain(SearchDirection direction)
{
    if (m_last.text.isEmpty())
        return openDialog();
    if (!find(m_last, direction))
        Application->messageBox(QStringLiteral("表格里没有“%1”。").arg(m_last.text), QStringLiteral("查找"), mbOk);
}

void GridFinder::type(const QString &text)
{
    if (!isTyping()) {
        m_typedColumn = m_grid.currentColumn();
        m_typedFrom = m_grid.currentRow();
    }
    if (m_typedColumn >= 0 && m_typedFrom >= 0)
        typeAgain(m_typed + text);
}

void GridFinder::typeAgain(const QString &text)
{
    const GridSearch search { .text = text, .column = m_typedColumn };
    const bool found = moveTo(findCell(m_grid, search, QPoint(m_typedColumn, m_typedFrom - 1), SearchDirection::Forward));
    if (found) {
        m_typed = text;
        m_last = search;
    }
    const QString where = plainTitle(m_grid.column(m_typedColumn).caption);
    showTyped((found ? QStringLiteral("在“%1”中查找：%2") : QStringLiteral("“%1”中没有：%2")).arg(where, text));
}

bool GridFinder::takeKey(const QKeyEvent &event)
{
    const QString text = event.text();
    const bool printable = !text.isEmpty() && text.front().isPrint() && !(event.modifiers() & (Qt::ControlModifier | Qt::AltModifier));
    if (printable && (isTyping() || text != u" ")) {
        type(text);
        return true;
    }
    if (!isTyping() || event.modifiers())
        return false;
    if (event.key() == Qt::Key_Escape || (event.key() == Qt::Key_Backspace && m_typed.size() == 1)) {
        endTyping();
        return true;
    }
    if (event.key() != Qt::Key_Backspace)
        return false;
    typeAgain(m_typed.chopped(1));
    return true;
}

void GridFinder::endTyping()
{
    m_typed.clear();
    m_box.hide();
    m_grid.viewport()->update();
}

TextPattern::Place GridFinder::foundText(int column, const QString &text) const
{
    const bool wanted = isTyping() || (m_dialog && m_dialog->isVisible());
    if (!wanted || m_last.text.isEmpty() || (m_last.column >= 0 && m_last.column != column))
        return {};
    return TextPattern(m_last.text, m_last.match, m_last.sensitivity, HanText::AlsoAsRead).find(text);
}

void GridFinder::showTyped(const QString &message)
{
    m_box.setText(message);
    m_box.adjustSize();
    const QRect view = m_grid.viewport()->geometry();
    m_box.move(view.left() + 1, view.bottom() - m_box.height());
    m_box.show();
    m_grid.viewport()->update();
}

} // namespace platform
