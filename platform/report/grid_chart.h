#pragma once

#include "platform/report/layout/add_in.h"
#include "platform/report/layout/chart_drawing.h"

#include <QString>

class TDBGridEh;

namespace report {

/// The rows that a chart of a grid shows at most: more bars than that nobody can tell apart.
constexpr int mostChartRows = 60;

/// Which columns of a grid are drawn, by their fields.
struct GridChartChoice {
    ChartKind kind = ChartKind::Bars;
    QString labelField {};
    QStringList valueFields {};
};

/// Visible columns that can name the bars, and those that can be their heights.
QList<int> labelColumns(const TDBGridEh &grid);
QList<int> valueColumns(const TDBGridEh &grid);
/// The first column with a sum over the text that tells the first rows apart best.
GridChartChoice usualChart(const TDBGridEh &grid);

/// The first rows of a grid in its order as a chart, one label a row; columns that are no longer there or hidden are left out. What
/// is left out of the rows, and that a filter narrows them, stands in the notice.
struct GridChart {
    ChartData data;
    QString notice; ///< "" when all rows are drawn
};
GridChart gridChart(const TDBGridEh &grid, const GridChartChoice &choice, const QString &title);

/// Draws a chart whose numbers are there already where a report has one.
class ReadyChart : public ReportAddIn {
    Q_OBJECT

public:
    ReadyChart(ChartData data, ChartKind kind)
        : m_data(std::move(data))
        , m_kind(kind)
    {
    }
    ObjectKind kind() const override { return ObjectKind::Chart; }
    void draw(const AddInTask &task, Drawing &drawing) const override { drawChart(m_data, m_kind, task.object.style, task.box, drawing); }

private:
    ChartData m_data;
    ChartKind m_kind;
};

} // namespace report
