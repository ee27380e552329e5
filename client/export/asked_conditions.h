#pragma once

#include "client/export/export_table.h"

#include <QHash>
#include <QObject>

class QAbstractButton;

/// Keeps the conditions of each screen's last query: a person may change the fields afterwards, and an export must name those by
/// which its rows were asked for.
class AskedConditions : public QObject {
    Q_OBJECT

public:
    AskedConditions();

    /// Looks at the screen's conditions whenever its query button is pressed, and keeps them when a statement is sent.
    void watch(const QWidget *screen, const QAbstractButton *queryButton);
    /// The conditions of the grid's screen; those that stand there now, when it has not been queried by its button.
    QList<ExportNote> of(const TDBGridEh &grid) const;

private:
    QHash<const QObject *, QList<ExportNote>> m_asked;
    QList<const QObject *> m_watched;
    const QWidget *m_asking = nullptr; ///< its query button is down
    QList<ExportNote> m_pressed; ///< its conditions then
};
