#pragma once

#include "client/export/export_table.h"

class QWidget;

namespace client {

/// The form, or the window of its own, that a grid stands on.
const QWidget *screenOf(const TDBGridEh &grid);

/// The caption of a condition: that of the box around it and its label, or its own one.
QString conditionCaption(const QWidget &screen, const QWidget &field);
bool liesInGrid(const QWidget &widget);

/// What stands in the conditions of a screen, in their tab order: each visible field and box outside grids by its label, or by its own
/// caption.
QList<ExportNote> screenConditions(const QWidget &screen);

/// The caption of a grid's screen, with the tab that the grid lies on where there is one.
QString screenTitle(const TDBGridEh &grid);

} // namespace client
