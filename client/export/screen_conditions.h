#pragma once

#include "client/export/export_table.h"

#include <QHash>

class QWidget;

namespace client {

/// The form, or the window of its own, that a grid stands on.
const QWidget *screenOf(const TDBGridEh &grid);

/// The captions of a screen's conditions, with its labels looked up once.
class ConditionCaptions {
public:
    explicit ConditionCaptions(const QWidget &screen);

    /// That of the box around a condition and its label, or its own one.
    QString of(const QWidget &field) const;

private:
    QHash<const QWidget *, QString> m_labels; ///< by the field that they stand at
};

bool liesInGrid(const QWidget &widget);

/// What stands in the conditions of a screen, in their tab order: each visible field and box outside grids by its label, or by its own
/// caption.
QList<ExportNote> screenConditions(const QWidget &screen);

/// The caption of a grid's screen, with the tab that the grid lies on where there is one.
QString screenTitle(const TDBGridEh &grid);

} // namespace client
