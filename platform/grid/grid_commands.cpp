#include "platform/grid/grid_commands.h"

#include "platform/grid/db_grid.h"
#include "platform/grid/grid_filter.h"
#include "platform/grid/grid_finder.h"

#include <QMap>

#include <algorithm>

namespace platform {

namespace {

using Id = GridCommandId;

void sortByCurrent(TDBGridEh &grid, Qt::KeyboardModifiers modifiers)
{
    if (grid.currentColumn() >= 0)
        grid.clickTitle(grid.currentColumn(), modifiers);
}

const GridCommand commands[] = {
    { Id::Copy, 1, u"复制", u"Ctrl+C", [](TDBGridEh &grid) { grid.copySelection(CopyTitles::Without); } },
    { Id::CopyWithTitles, 1, u"带标题复制", u"Ctrl+Shift+C", [](TDBGridEh &grid) { grid.copySelection(CopyTitles::With); } },
    { Id::SelectAll, 2, u"全选", u"Ctrl+A", [](TDBGridEh &grid) { grid.selectAll(); } },
    { Id::SelectColumn, 2, u"选列", u"Ctrl+Space", [](TDBGridEh &grid) { grid.selectCurrentColumn(); } },
    { Id::SelectRow, 2, u"选行", u"Shift+Space", [](TDBGridEh &grid) { grid.selectCurrentRow(); } },
    { Id::SelectNothing, 2, u"取消选择", u"Space", [](TDBGridEh &grid) { grid.clearSelection(); } },
    { Id::Find, 3, u"查找…", u"Ctrl+F", [](TDBGridEh &grid) { grid.finder().openDialog(); } },
    { Id::FindNext, 3, u"查找下一个", u"F3", [](TDBGridEh &grid) { grid.finder().findAgain(SearchDirection::Forward); } },
    { Id::FindPrevious, 3, u"查找上一个", u"Shift+F3", [](TDBGridEh &grid) { grid.finder().findAgain(SearchDirection::Backward); } },
    { Id::Sort, 4, u"按此列排序", u"F7", [](TDBGridEh &grid) { sortByCurrent(grid, Qt::NoModifier); } },
    { Id::SortAlso, 4, u"再按此列排序", u"Shift+F7", [](TDBGridEh &grid) { sortByCurrent(grid, Qt::ControlModifier); } },
    { Id::FilterByValue, 5, u"只看此值", u"Ctrl+J", [](TDBGridEh &grid) { grid.filter().useSelectedValues(QuickFilter::Keep::Those); } },
    { Id::FilterOutValue, 5, u"排除此值", u"Ctrl+Shift+J",
        [](TDBGridEh &grid) { grid.filter().useSelectedValues(QuickFilter::Keep::Others); } },
    { Id::FilterColumn, 5, u"按列筛选…", u"Alt+Down", [](TDBGridEh &grid) { grid.filter().chooseValues(grid.currentColumn()); } },
    { Id::FilterText, 5, u"筛选…", u"Ctrl+Shift+L", [](TDBGridEh &grid) { grid.filter().openBar(); } },
    { Id::ClearFilter, 5, u"清除筛选", u"Ctrl+Shift+X", [](TDBGridEh &grid) { grid.filter().clear(); } },
    { Id::FitColumns, columnGroup, u"全部列适合内容", u"Ctrl+Shift+F", [](TDBGridEh &grid) { grid.fitColumns(); } },
    { Id::RestoreLayout, columnGroup, u"恢复原始布局", u"Ctrl+Shift+R", [](TDBGridEh &grid) { grid.restoreDesignedColumns(); } },
};

QMap<Id, QList<QKeySequence>> chosenKeys;

} // namespace

QList<QKeySequence> GridCommand::keys() const { return chosenKeys.contains(id) ? chosenKeys[id] : designedKeys(); }

QList<QKeySequence> GridCommand::designedKeys() const
{
    QList<QKeySequence> keys;
    for (const QStringView shortcut : shortcuts.split(u' ', Qt::SkipEmptyParts))
        keys.append(QKeySequence(shortcut.toString()));
    return keys;
}

std::span<const GridCommand> gridCommands() { return commands; }

const GridCommand &gridCommand(GridCommandId id) { return *std::ranges::find(commands, id, &GridCommand::id); }

void setGridCommandKeys(GridCommandId id, const QList<QKeySequence> &keys) { chosenKeys[id] = keys; }

const GridCommand *gridCommandFor(QKeyCombination keys)
{
    const auto found = std::ranges::find_if(commands, [keys](const GridCommand &command) { return command.keys().contains(keys); });
    return found == std::end(commands) ? nullptr : found;
}

} // namespace platform
