#pragma once

#include "platform/dataset/quick_filter.h"

#include <QObject>

class TCustomClientDataSet;
class TDBGridEh;

namespace platform {

class FilterBar;

/// Narrows the rows of a grid as a person asks: to the values of cells, to values chosen from a column's list, to what is typed
/// into a bar above the titles. The filter itself lies in the dataset, so that footers, exports and prints follow it.
class GridFilter : public QObject {
    Q_OBJECT

public:
    explicit GridFilter(TDBGridEh &grid);

    /// Keeps or drops the rows that show, in the current column, what its selected cells show, or else its current cell. Throws
    /// Exception when that column cannot be filtered.
    void useSelectedValues(QuickFilter::Keep keep);
    /// What is to be seen takes the place of all that was asked of its column; what is to be hidden joins what is hidden already.
    void setValues(QuickFilter::Values values);
    /// Asks which values of a column to see; throws as above.
    void chooseValues(int column);
    /// Opens the bar, ready to type.
    void openBar();
    /// Keeps the rows that hold the text in one of the visible columns, or in the one that is told.
    void setText(const QString &text, int column = -1);
    void clear();
    /// What is asked, in words; "" without a filter.
    QString description() const;

    /// What stands in a column, the text of a check box and of nothing in words.
    QString valueName(int column, const QString &text) const;

    FilterBar &bar() { return *m_bar; }
    /// Shows in the bar what the dataset holds; a bar without a filter that nobody types into goes.
    void takeRows();

Q_SIGNALS:
    void barToggled(); ///< the grid has to make or take room

private:
    TCustomClientDataSet &requireRows() const;
    TCustomClientDataSet *rows() const; ///< null while there are none
    QuickFilter filter() const;
    QString requireField(int column) const;
    void apply(const QuickFilter &filter);
    QString conditionText(const QuickFilter::Values &values) const;
    void showBar(bool visible);

    TDBGridEh &m_grid;
    FilterBar *m_bar;
};

} // namespace platform
