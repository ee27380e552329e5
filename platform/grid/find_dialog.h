#pragma once

#include <QDialog>

class QCheckBox;
class QComboBox;
class QLabel;
class TDBGridEh;

namespace platform {

class GridFinder;
enum class SearchDirection;
struct GridSearch;

/// Asks what to find in a grid; stays open beside it.
class FindDialog : public QDialog {
public:
    FindDialog(TDBGridEh &grid, GridFinder &finder);
    /// Shows the dialog, ready to type.
    void begin();

private:
    void find(SearchDirection direction);
    GridSearch search() const;
    void remember(const QString &text);

    TDBGridEh &m_grid;
    GridFinder &m_finder;
    QComboBox *m_text;
    QComboBox *m_columns;
    QComboBox *m_match;
    QCheckBox *m_case;
    QCheckBox *m_titles;
    QLabel *m_result;
};

} // namespace platform
