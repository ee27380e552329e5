#include "platform/grid/grid_menu.h"

#include "platform/grid/copied_cells.h"
#include "platform/grid/db_grid.h"
#include "platform/grid/grid_commands.h"
#include "platform/grid/grid_filter.h"
#include "platform/grid/number_text.h"
#include "platform/toolkit/handler.h"

#include <QApplication>
#include <QMenu>

#include <utility>

namespace platform {

namespace {

int visibleColumns(const TDBGridEh &grid, int end)
{
    int count = 0;
    for (int column = 0; column < end; ++column)
        count += grid.column(column).visible ? 1 : 0;
    return count;
}

void addCommand(QMenu *menu, TDBGridEh &grid, const GridCommand &command)
{
    QAction *action = menu->addAction(command.text.toString());
    action->setShortcuts(command.keys());
    handle(action, &QAction::triggered, &grid, [&grid, run = command.run] { run(grid); });
}

void addShownColumns(QMenu *menu, TDBGridEh &grid)
{
    QMenu *shown = menu->addMenu(QStringLiteral("显示的列"));
    for (int index = 0; index < grid.columnCount(); ++index) {
        QAction *action = shown->addAction(plainTitle(grid.column(index).caption));
        action->setCheckable(true);
        action->setChecked(grid.column(index).visible);
        handle(
            action, &QAction::toggled, &grid, [&grid, index](bool visible) { visible ? grid.showColumn(index) : grid.hideColumn(index); });
    }
}

void addThousandsMarks(QMenu *menu, TDBGridEh &grid)
{
    QAction *action = menu->addAction(QStringLiteral("数字显示千分位"));
    action->setCheckable(true);
    action->setChecked(thousandsMarks() == ThousandsMarks::On);
    handle(action, &QAction::toggled, &grid, [](bool on) {
        setThousandsMarks(on ? ThousandsMarks::On : ThousandsMarks::Off);
        for (QWidget *shown : QApplication::allWidgets())
            shown->update();
    });
}

} // namespace

std::unique_ptr<QMenu> cellMenu(TDBGridEh &grid)
{
    auto menu = std::make_unique<QMenu>(&grid);
    int group = gridCommands().front().group;
    for (const GridCommand &command : gridCommands()) {
        if (command.group == columnGroup)
            continue;
        if (std::exchange(group, command.group) != command.group)
            menu->addSeparator();
        addCommand(menu.get(), grid, command);
    }
    if (grid.currentColumn() < 0)
        return menu;
    menu->addSeparator();
    QMenu *column = columnMenu(grid, grid.currentColumn()).release();
    column->setParent(menu.get(), column->windowFlags());
    column->setTitle(QStringLiteral("列"));
    menu->addMenu(column);
    return menu;
}

std::unique_ptr<QMenu> columnMenu(TDBGridEh &grid, int column)
{
    auto menu = std::make_unique<QMenu>(&grid);
    const auto add = [&grid, &menu](const QString &text, auto &&work) { handle(menu->addAction(text), &QAction::triggered, &grid, work); };
    if (column >= 0) {
        add(QStringLiteral("隐藏“%1”").arg(plainTitle(grid.column(column).caption)), [&grid, column] { grid.hideColumn(column); });
        add(QStringLiteral("按此列筛选…"), [&grid, column] { grid.filter().chooseValues(column); });
        add(QStringLiteral("适合内容的列宽"), [&grid, column] { grid.fitColumn(column); });
        addCommand(menu.get(), grid, gridCommand(GridCommandId::FitColumns));
        add(QStringLiteral("冻结到此列"), [&grid, column] { grid.freezeColumns(visibleColumns(grid, column + 1)); });
    }
    if (grid.frozenColumns() > 0)
        add(QStringLiteral("取消冻结"), [&grid] { grid.freezeColumns(0); });
    addShownColumns(menu.get(), grid);
    addThousandsMarks(menu.get(), grid);
    menu->addSeparator();
    addCommand(menu.get(), grid, gridCommand(GridCommandId::RestoreLayout));
    Q_EMIT grid.columnMenuOpening(menu.get());
    return menu;
}

void popUp(std::unique_ptr<QMenu> menu, const QPoint &globalPosition)
{
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu.release()->popup(globalPosition);
}

} // namespace platform
