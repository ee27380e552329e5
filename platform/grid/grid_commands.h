#pragma once

#include <QKeySequence>
#include <QList>
#include <QString>

#include <span>

class TDBGridEh;

namespace platform {

enum class GridCommandId {
    Copy,
    CopyWithTitles,
    SelectAll,
    SelectColumn,
    SelectRow,
    SelectNothing,
    Find,
    FindNext,
    FindPrevious,
    Sort,
    SortAlso,
    FilterByValue,
    FilterOutValue,
    FilterColumn,
    FilterText,
    ClearFilter,
    FitColumns,
    RestoreLayout
};

constexpr int columnGroup = 6; ///< commands that the menus of columns offer, and those of cells do not

/// A command of every grid. Its row is the one place that its menu, its keys, the host's menus and the list of shortcuts read.
struct GridCommand {
    GridCommandId id;
    int group; ///< menus part groups with a line
    QStringView text;
    QStringView shortcuts; ///< the designed ones, joined with blanks; the first one stands in menus
    void (*run)(TDBGridEh &grid);

    QList<QKeySequence> designedKeys() const;
    QList<QKeySequence> keys() const; ///< the person's choice, or the designed ones
};

/// All commands, in the order of the menu.
std::span<const GridCommand> gridCommands();
const GridCommand &gridCommand(GridCommandId id);
/// Gives a command other keys, in every grid.
void setGridCommandKeys(GridCommandId id, const QList<QKeySequence> &keys);
/// The command that a key press means; null when it means none.
const GridCommand *gridCommandFor(QKeyCombination keys);

} // namespace platform
