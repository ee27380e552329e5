#pragma once

#include <QDialog>

#include <optional>

class QCheckBox;
class QComboBox;
class QLabel;
class QListWidget;
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
    void listAll();
    void keepFound();
    GridSearch search() const;
    /// What to look for, remembered; nothing, and a word to the person, while the line is empty.
    std::optional<GridSearch> wantedSearch();
    void remember(const QString &text);

    TDBGridEh &m_grid;
    GridFinder &m_finder;
    QComboBox *m_text;
    QComboBox *m_columns;
    QComboBox *m_match;
    QCheckBox *m_case;
    QCheckBox *m_titles;
    QLabel *m_result;
    QMetaObject::Connection m_watching; ///< of the rows that the hits stand in
    QListWidget *m_hits; ///< hidden until all were asked for
};

} // namespace platform
