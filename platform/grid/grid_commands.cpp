#include "platform/grid/grid_commands.h"

#include "platform/grid/db_grid.h"
#include "platform/grid/grid_finder.h"

#include <algorithm>
#include <utility>

namespace platform {

namespace {

using Id = GridCommandId;

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
};

struct KeyRow {
    QKeyCombination keys;
    const GridCommand *command;
};

QList<KeyRow> keyRows()
{
    QList<KeyRow> rows;
    for (const GridCommand &command : commands) {
        for (const QKeySequence &sequence : command.keys())
            rows.append({ sequence[0], &command });
    }
    return rows;
}

} // namespace

QList<QKeySequence> GridCommand::keys() const
{
    QList<QKeySequence> keys;
    for (const QStringView shortcut : shortcuts.split(u' ', Qt::SkipEmptyParts))
        keys.append(QKeySequence(shortcut.toString()));
    return keys;
}

std::span<const GridCommand> gridCommands() { return commands; }

const GridCommand &gridCommand(GridCommandId id) { return *std::ranges::find(commands, id, &GridCommand::id); }

const GridCommand *gridCommandFor(QKeyCombination keys)
{
    static const QList<KeyRow> rows = keyRows();
    const auto found = std::ranges::find(rows, keys, &KeyRow::keys);
    return found == rows.end() ? nullptr : found->command;
}

} // namespace platform
