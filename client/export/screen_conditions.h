#pragma once

#include "client/export/export_table.h"

class QWidget;

/// What stands in the conditions of the screen that shows a grid, in their tab order: each visible field and box outside grids by its
/// label, or by its own caption.
QList<ExportNote> screenConditions(const TDBGridEh &grid);

/// The caption of that screen, with the tab that the grid lies on where there is one.
QString screenTitle(const TDBGridEh &grid);
