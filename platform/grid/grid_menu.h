#pragma once

#include <memory>

class QMenu;
class QPoint;
class TDBGridEh;

namespace platform {

/// What a right click on a grid's cells offers; the caller owns the menu.
std::unique_ptr<QMenu> cellMenu(TDBGridEh &grid);
/// What a right click on the title of `column` offers (-1: beside the titles); the caller owns the menu.
std::unique_ptr<QMenu> columnMenu(TDBGridEh &grid, int column);
/// Shows a menu, which goes away with its choice.
void popUp(std::unique_ptr<QMenu> menu, const QPoint &globalPosition);

} // namespace platform
