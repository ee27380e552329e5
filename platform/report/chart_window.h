#pragma once

#include "platform/report/grid_chart.h"

#include <QDialog>
#include <QTimer>

class QComboBox;
class QLabel;
class QMenu;
class QToolButton;
namespace files {
class SavedFileLabel;
}

namespace report {

class ChartView;

/// A chart of a grid in a window of its own. It shows the grid's rows in their order and follows it; a click on a bar makes its row
/// current, a double click does there what one in the grid does. While it is open, prints and workbooks of the grid hold it too.
class ChartWindow : public QDialog {
    Q_OBJECT

public:
    /// Shows the chart of a grid, opening it when there is none. Throws Exception when the grid has no numbers to draw.
    static ChartWindow &showFor(TDBGridEh &grid, const QString &title);
    /// The open one of a grid, or null.
    static ChartWindow *of(const TDBGridEh &grid);

    const GridChartChoice &choice() const { return m_choice; }
    void choose(const GridChartChoice &choice);
    GridChart chart() const;
    ChartView &view() { return *m_view; }
    /// Writes the picture, .png or .svg, and tells of it with links. Throws Exception.
    void saveTo(const QString &fileName);

private:
    ChartWindow(TDBGridEh &grid, const QString &title);
    void buildTools();
    void listColumns();
    void drawLater();
    void drawAgain();
    void selectRow(int row);
    void savePicture();

    TDBGridEh &m_grid; ///< the parent
    QString m_title;
    GridChartChoice m_choice;
    ChartView *m_view;
    QComboBox *m_kinds;
    QComboBox *m_labels;
    QToolButton *m_values;
    QMenu *m_valueMenu;
    QLabel *m_notice;
    files::SavedFileLabel *m_saved;
    QTimer m_later;
};

} // namespace report
