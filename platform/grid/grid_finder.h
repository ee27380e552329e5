#pragma once

#include "platform/grid/grid_search.h"

#include <QLabel>
#include <QPointer>

class QKeyEvent;

namespace platform {

class FindDialog;

/// Finds cells of a grid for the find dialog, for its repetition, and for what is typed into the grid itself: that moves, letter
/// by letter, to the next row whose current column carries it, and stands in a small box while it counts.
class GridFinder : public QObject {
public:
    explicit GridFinder(TDBGridEh &grid);

    void openDialog();
    /// Moves to the next cell that fits, or marks the title that does; false: there is none.
    [[nodiscard]] bool find(const GridSearch &search, SearchDirection direction);
    /// Repeats the last search, asking for one when there was none; tells the user when nothing is found.
    void findAgain(SearchDirection direction);

    bool isTyping() const { return !m_typed.isEmpty(); }
    void type(const QString &text);
    /// Backspace takes a letter back, Escape ends; true when the key was meant for the typed text.
    bool takeKey(const QKeyEvent &event);
    void endTyping();
    /// Where in the current cell's text that stands which is typed or asked for in the dialog.
    TextPattern::Place foundText(int column, const QString &text) const;

private:
    bool moveTo(std::optional<QPoint> cell);
    void typeAgain(const QString &text);
    void showTyped(const QString &message);

    TDBGridEh &m_grid;
    QPointer<FindDialog> m_dialog;
    QLabel m_box;
    GridSearch m_last;
    int m_foundTitle = -1; ///< the column whose title was found last
    QString m_typed;
    int m_typedColumn = -1;
    int m_typedFrom = 0; ///< the row that was current when typing began
    bool m_moving = false;
};

} // namespace platform
