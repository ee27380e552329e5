#pragma once

#include "platform/dataset/data_source.h"
#include "platform/grid/cell_parameters.h"
#include "platform/grid/column.h"

#include <QAbstractScrollArea>
#include <QPointer>

#include <functional>
#include <memory>
#include <optional>

class QMenu;

namespace platform {

class ColumnGeometry;
class ColumnModel;
class GridFilter;
class GridFinder;
class GridFooter;
class GridGestures;
class GridHeader;
class GridSelection;
class SumList;
class TextPainter;
struct CellView;
struct GridColors;

enum class CopyTitles { Without, With };
/// How a movement of the current cell changes the selection: it starts anew, or takes in the cells or the rows on the way.
enum class Extend { No, Cells, Rows };

} // namespace platform

/// A grid over a dataset: titles of up to two levels that sort, frozen columns, footer rows, row numbers, cell colours,
/// selection and copy. It reads the dataset's columns directly and paints only what is seen.
class TDBGridEh : public QAbstractScrollArea {
    Q_OBJECT

public:
    explicit TDBGridEh(QWidget *parent = nullptr);
    ~TDBGridEh() override;

    TDataSource *dataSource() const { return m_dataSource; }
    void setDataSource(TDataSource *source);
    TDataSet *dataSet() const;

    /// Columns in their shown order. A reference lives until the columns change.
    int columnCount() const;
    const platform::Column &column(int index) const;
    void setColumns(const QList<platform::Column> &columns); ///< also becomes the designed layout
    void setColumn(int index, const platform::Column &column);
    void moveColumn(int from, int to);
    /// Case ignored; -1 when there is none.
    int columnIndex(QStringView fieldName, platform::ColumnScope scope = platform::ColumnScope::All) const;
    void setColumnWidth(int index, int width);
    /// As code wants it; a person's choice comes before.
    void setColumnVisible(int index, bool visible);
    /// As a person does: the choice stays, whatever code wants, until the design is restored.
    void hideColumn(int index);
    void showColumn(int index);
    /// Whether a person has hidden (false) or shown (true) a column; nothing when nobody has.
    std::optional<bool> columnChoice(int index) const;
    bool isDesignedVisible(int index) const; ///< what setColumns() said
    void restoreDesignedColumns();

    int frozenColumns() const;
    void setFrozenColumns(int count); ///< also becomes the designed number
    void freezeColumns(int count); ///< as a person does
    bool isFreezeDesigned() const; ///< false when a person has frozen other columns
    bool isFrozen(int column) const;
    int footerRowCount() const;
    void setFooterRowCount(int rows);
    void setFooterColor(const QColor &color);
    void setSortLocal(bool local) { m_sortLocal = local; }
    bool sortLocal() const { return m_sortLocal; }

    /// Acts as a person's click on a title: Ctrl adds a sort key, a plain click replaces the keys; the marks go ascending,
    /// descending, none, and are applied through the features object of the dataset's class.
    void clickTitle(int column, Qt::KeyboardModifiers modifiers = {});
    /// Indexes of the marked columns in key order.
    QList<int> sortedColumns() const;

    int currentColumn() const; ///< the selected column, -1 without columns
    int currentRow() const; ///< the dataset's current row
    /// Moves to the nearest row there is; a hidden column leaves the current one. Does nothing without rows or visible columns.
    void setCurrentCell(int row, int column, platform::Extend extend = platform::Extend::No);
    /// The selected cells as rectangles whose x is a column index and whose y is a shown row; hidden columns in them count as not
    /// selected. Empty while there is nothing but the current cell.
    QList<QRect> selectedRanges() const;
    bool isSelected(int row, int column) const;
    void selectAll();
    void selectCurrentColumn();
    void selectCurrentRow();
    void clearSelection();
    void addSelectedRow(int row); ///< and makes it current
    void toggleCell(int row, int column); ///< takes the cell in or out, and makes it current

    void openCurrentCell(); ///< as a double click on it does

    int rowCount() const;
    /// The exact texts: what is copied, exported and searched.
    QString cellText(int row, int column) const;
    QString footerText(int footerRow, int column) const;
    /// The same for a place without check boxes: a ticked one is "√", another one nothing.
    QString cellTextWithTicks(int row, int column) const;
    /// The texts that a person sees, on the screen and on paper: numbers in their column's form.
    QString displayText(int row, int column) const;
    QString footerDisplayText(int footerRow, int column) const;
    /// The form of a column's numbers as a format of the report engine; "" when it shows its values as they are.
    QString displayFormat(int column) const;
    Qt::Alignment footerAlignment(int footerRow, int column) const;
    /// What stands in place of rows: that nothing was asked, that nothing was found, or that a filter hides all; "" while there are rows.
    QString emptyNote() const;
    /// Says in place of "nothing was asked" why there are no rows, until the dataset opens.
    void setClosedNote(const QString &note);
    QColor cellBackground(int row, int column) const;
    /// The record number that the sum list reports for a shown row, counted from 1; -1 when the list is not active.
    int recordNumber(int row) const;

    /// The event that may change a cell's look; called for painted cells and cellBackground().
    platform::CellEvent onGetCellParams;
    /// The text of a cell that shows no data (the row number of a "序号" column, say).
    std::function<QString(int row, int column)> onCellText;

    /// Puts the selected cells (else the current one) on the clipboard, as text and as HTML in which codes stay text.
    void copySelection(platform::CopyTitles titles);
    platform::GridFinder &finder() { return *m_finder; }
    platform::GridFilter &filter() { return *m_filter; }
    const platform::GridFilter &filter() const { return *m_filter; }
    void markTitle(int column); ///< as the one that was found; -1: none
    /// Widens or narrows a column to its title, its footers and its texts in the rows that are seen.
    void fitColumn(int index);
    void fitColumns(); ///< the same for all that are visible

    /// Where things are painted in the viewport.
    QRect cellRect(int row, int column) const; ///< empty for a hidden column
    int rowAt(int y) const; ///< -1 where there is none
    int pageRows() const; ///< rows that fit in, at least 1
    int rowHeight() const { return m_rowHeight; } ///< pixels
    QFont designedFont() const; ///< what its texts would be in without zoom
    void takeZoom(); ///< the zoom of all grids has changed, or the font that this one is designed in

Q_SIGNALS:
    void titleClicked(int column);
    void cellDoubleClicked(int row, int column);
    void currentCellChanged(int row, int column);
    void selectionChanged();
    void columnsChanged(); ///< order, width or visibility
    void cellMenuOpening(QMenu *menu); ///< a right click on the cells; whoever hears it may add to the menu
    void columnMenuOpening(QMenu *menu); ///< of a title; whoever hears it may add to the menu

protected:
    bool event(QEvent *event) override;
    bool viewportEvent(QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    void connectHeader();
    void takeRows();
    void takeRecord();
    void arrange();
    void columnsRearranged();
    void choose(int index, bool visible);
    void updateRow(int row);
    void showCurrentCell();
    void goTo(int row, int column);
    void announceSelection();
    bool isNarrowed() const;
    bool countsCutRows(int footerRow, int column) const;
    platform::CellView view() const;

    QPointer<TDataSource> m_dataSource;
    std::unique_ptr<platform::ColumnModel> m_columns;
    std::unique_ptr<platform::ColumnGeometry> m_geometry;
    std::unique_ptr<platform::TextPainter> m_texts;
    std::unique_ptr<platform::SumList> m_sums;
    std::unique_ptr<platform::GridSelection> m_selection;
    std::unique_ptr<platform::GridFinder> m_finder;
    std::unique_ptr<platform::GridFilter> m_filter;
    std::unique_ptr<platform::GridGestures> m_gestures;
    platform::GridHeader *m_header;
    platform::GridFooter *m_footer;
    QString m_closedNote;
    int m_designedFrozen = 0;
    int m_frozen = 0;
    int m_rowHeight = 1;
    int m_currentColumn = -1;
    int m_shownRecord = -1; ///< the record whose row is painted as current
    bool m_sortLocal = false;
    bool m_cellEventFailed = false; ///< it threw; not called again until the rows change
};
