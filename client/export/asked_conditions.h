#pragma once

#include "client/export/export_table.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QSet>

#include <optional>

class QAbstractButton;
class TDataSet;
class TForm;

namespace client {

/// Keeps the conditions by which each dataset was asked for: a person may change the fields afterwards, and a query may fail and
/// leave the rows of the one before it. An export must name the conditions of the rows that it writes.
class AskedConditions : public QObject {
    Q_OBJECT

public:
    /// When a query was asked for, and how long the person waited for it.
    struct Times {
        QDateTime asked;
        qint64 milliseconds = 0;
    };

    /// Looks at the screen's conditions whenever this query button of it is pressed, and keeps them for every dataset of the screen that
    /// opens then, and for those that open later (a detail) until it is queried again.
    void watch(TForm *screen, const QAbstractButton *queryButton);
    /// The conditions of a grid's rows; those that stand on its screen now, when it has not been queried by its button.
    QList<ExportNote> of(const TDBGridEh &grid) const;
    /// Lets a copy of a grid's rows have the conditions of those.
    void adopt(const TDBGridEh &original, const QObject *copy);
    /// Whether other conditions stand on the screen now than those of a grid's rows.
    bool haveChanged(const TDBGridEh &grid) const;
    /// The last query of a screen failed: rows that it did not ask anew are those of an earlier one.
    void markOld(const TForm &screen);
    bool areOld(const TDBGridEh &grid) const;
    /// How many datasets of all screens have been opened so far.
    int openings() const { return m_openings; }
    /// Of the query that a grid's rows came with; nothing when its screen has not been queried by its button.
    std::optional<Times> times(const TDBGridEh &grid) const;

Q_SIGNALS:
    /// The button of a screen was pressed and a dataset has opened; its handlers are done.
    void answered(TForm *screen);

private:
    struct Asking {
        QList<const QAbstractButton *> buttons; ///< that are watched; a screen's pages can have their own
        QList<ExportNote> pressed; ///< when its button was pressed last
        QList<ExportNote> asked; ///< of the last press that opened a dataset
        QSet<const QObject *> opened; ///< since then
        bool isAsking = false; ///< its button is down
        bool wasAsked = false;
        bool wasAnswered = false; ///< since its button was pressed last
        QElapsedTimer sincePress;
        QDateTime pressedAt;
        Times times; ///< of the last press that opened a dataset
    };
    void watchDataSets(TForm *screen);
    void finish(TForm *screen);
    void remember(const TForm *screen, const TDataSet *dataSet);

    QHash<const QObject *, Asking> m_screens;
    QHash<const QObject *, QList<ExportNote>> m_asked; ///< by dataset
    QSet<const QObject *> m_old; ///< datasets
    int m_openings = 0;
};

} // namespace client
