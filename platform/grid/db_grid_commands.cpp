#include "platform/grid/column_model.h"
#include "platform/grid/copied_cells.h"
#include "platform/grid/db_grid.h"
#include "platform/toolkit/handler.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>
#include <QMimeData>

void TDBGridEh::copySelection(bool titles)
{
    if (currentRow() >= 0 && m_currentColumn >= 0)
        QGuiApplication::clipboard()->setMimeData(copiedCells(*this, titles).release());
}

bool TDBGridEh::findNext(const QString &text, bool forward)
{
    QList<int> columns;
    for (int column = 0; column < m_columns->count(); ++column) {
        if (m_columns->at(column).visible)
            columns.append(column);
    }
    const qint64 width = columns.size();
    const qint64 cells = width * rowCount();
    if (text.isEmpty() || cells == 0)
        return false;
    const qint64 start = currentRow() * width + columns.indexOf(m_currentColumn);
    for (qint64 distance = 1; distance <= cells; ++distance) {
        const qint64 cell = (start + (forward ? distance : cells - distance)) % cells;
        const int row = int(cell / width);
        const int column = columns[cell % width];
        if (cellText(row, column).contains(text, Qt::CaseInsensitive)) {
            setCurrentCell(row, column);
            return true;
        }
    }
    return false;
}

std::unique_ptr<QMenu> TDBGridEh::columnMenu(int column)
{
    auto menu = std::make_unique<QMenu>(this);
    const auto add = [this, &menu](const QString &text, auto &&work) { handle(menu->addAction(text), &QAction::triggered, this, work); };
    if (column >= 0) {
        add(tr("隐藏“%1”").arg(plainTitle(m_columns->at(column).caption)), [this, column] { setColumnVisible(column, false); });
        add(tr("适合内容的列宽"), [this, column] { fitColumn(column); });
        add(tr("冻结到此列"), [this, column] { freezeTo(column); });
    }
    if (m_frozen > 0)
        add(tr("取消冻结"), [this] { freezeTo(-1); });
    QMenu *shown = menu->addMenu(tr("显示的列"));
    for (int index = 0; index < m_columns->count(); ++index) {
        QAction *action = shown->addAction(plainTitle(m_columns->at(index).caption));
        action->setCheckable(true);
        action->setChecked(m_columns->at(index).visible);
        handle(action, &QAction::toggled, this, [this, index](bool visible) { setColumnVisible(index, visible); });
    }
    menu->addSeparator();
    add(tr("恢复原始布局"), [this] { restoreDesignedColumns(); });
    return menu;
}

void TDBGridEh::freezeTo(int column)
{
    m_frozen = 0;
    for (int index = 0; index <= column; ++index)
        m_frozen += m_columns->at(index).visible ? 1 : 0;
    arrange();
}
