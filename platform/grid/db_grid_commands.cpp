#include "platform/grid/column_model.h"
#include "platform/grid/copied_cells.h"
#include "platform/grid/db_grid.h"
#include "platform/grid/grid_finder.h"
#include "platform/toolkit/exception.h"
#include "platform/toolkit/handler.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>
#include <QMimeData>

namespace {

/// More would take the clipboard's programs minutes to swallow; an export is the way then.
constexpr qint64 mostCopiedCells = 2'000'000;

qint64 cellCount(const QList<QRect> &ranges)
{
    qint64 cells = 0;
    for (const QRect &range : ranges)
        cells += qint64(range.width()) * range.height();
    return cells;
}

} // namespace

void TDBGridEh::copySelection(bool titles)
{
    const qint64 cells = cellCount(selectedRanges());
    if (cells > mostCopiedCells)
        throw Exception(
            QStringLiteral("选中了 %L1 个单元格，最多只能复制 %L2 个；请少选一些，或改用导出。").arg(cells).arg(mostCopiedCells));
    if (currentRow() >= 0 && m_currentColumn >= 0)
        QGuiApplication::clipboard()->setMimeData(copiedCells(*this, titles).release());
}

std::unique_ptr<QMenu> TDBGridEh::cellMenu()
{
    auto menu = std::make_unique<QMenu>(this);
    const auto add = [this, &menu](const QString &text, QKeyCombination keys, auto &&work) {
        QAction *action = menu->addAction(text);
        action->setShortcut(keys);
        handle(action, &QAction::triggered, this, work);
    };
    add(tr("复制"), Qt::CTRL | Qt::Key_C, [this] { copySelection(false); });
    add(tr("带标题复制"), Qt::CTRL | Qt::SHIFT | Qt::Key_C, [this] { copySelection(true); });
    add(tr("全选"), Qt::CTRL | Qt::Key_A, [this] { selectAll(); });
    menu->addSeparator();
    add(tr("查找…"), Qt::CTRL | Qt::Key_F, [this] { m_finder->openDialog(); });
    add(tr("查找下一个"), Qt::Key_F3, [this] { m_finder->findAgain(true); });
    if (m_currentColumn < 0)
        return menu;
    menu->addSeparator();
    QMenu *column = columnMenu(m_currentColumn).release();
    column->setParent(menu.get(), column->windowFlags());
    column->setTitle(tr("列"));
    menu->addMenu(column);
    return menu;
}

std::unique_ptr<QMenu> TDBGridEh::columnMenu(int column)
{
    auto menu = std::make_unique<QMenu>(this);
    const auto add = [this, &menu](const QString &text, auto &&work) { handle(menu->addAction(text), &QAction::triggered, this, work); };
    if (column >= 0) {
        add(tr("隐藏“%1”").arg(plainTitle(m_columns->at(column).caption)), [this, column] { setColumnVisible(column, false); });
        add(tr("适合内容的列宽"), [this, column] { fitColumn(column); });
        add(tr("冻结到此列"), [this, column] { freezeColumns(m_columns->visibleCount(column + 1)); });
    }
    if (m_frozen > 0)
        add(tr("取消冻结"), [this] { freezeColumns(0); });
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
