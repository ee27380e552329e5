#include "platform/report/grid_chart.h"

#include "platform/dataset/data_set.h"
#include "platform/grid/copied_cells.h"
#include "platform/grid/db_grid.h"

#include <QSet>

#include <algorithm>

using namespace platform;

namespace report {

namespace {

const TField *shownField(const TDBGridEh &grid, int column)
{
    const Column &shown = grid.column(column);
    return shown.visible && !shown.isCheckBox() && grid.dataSet() ? grid.dataSet()->findField(shown.fieldName) : nullptr;
}

bool isAmount(const TField &field, const Column &column)
{
    return field.type() != FieldType::Text && field.type() != FieldType::DateTime && column.numberForm != NumberForm::Exact;
}

template <class Test>
QList<int> columnsThat(const TDBGridEh &grid, Test test)
{
    QList<int> columns;
    for (int column = 0; column < grid.columnCount(); ++column) {
        const TField *field = shownField(grid, column);
        if (field && test(*field, grid.column(column)))
            columns.append(column);
    }
    return columns;
}

int drawnRows(const TDBGridEh &grid) { return std::min(grid.rowCount(), mostChartRows); }

qsizetype differentTexts(const TDBGridEh &grid, int column)
{
    QSet<QString> texts;
    for (int row = 0; row < drawnRows(grid); ++row)
        texts.insert(grid.cellText(row, column));
    return texts.size();
}

bool hasSum(const Column &column)
{
    return std::ranges::any_of(column.footers, [](const ColumnFooter &footer) { return footer.kind == FooterKind::Sum; });
}

} // namespace

QList<int> labelColumns(const TDBGridEh &grid)
{
    return columnsThat(grid, [](const TField &field, const Column &column) { return !isAmount(field, column); });
}

QList<int> valueColumns(const TDBGridEh &grid) { return columnsThat(grid, isAmount); }

GridChartChoice usualChart(const TDBGridEh &grid)
{
    GridChartChoice choice;
    qsizetype most = 0;
    for (const int column : labelColumns(grid)) {
        const qsizetype different = differentTexts(grid, column);
        if (different > most)
            choice.labelField = grid.column(column).fieldName;
        most = std::max(most, different);
    }
    const QList<int> values = valueColumns(grid);
    const auto summed = std::ranges::find_if(values, [&grid](int column) { return hasSum(grid.column(column)); });
    if (!values.isEmpty())
        choice.valueFields = { grid.column(summed == values.end() ? values.first() : *summed).fieldName };
    return choice;
}

GridChart gridChart(const TDBGridEh &grid, const GridChartChoice &choice, const QString &title)
{
    GridChart chart { .data = { .title = title }, .notice = {} };
    const int rows = drawnRows(grid);
    const int labels = grid.columnIndex(choice.labelField, ColumnScope::Visible);
    for (int row = 0; row < rows; ++row)
        chart.data.labels.append(labels < 0 ? QString::number(row + 1) : grid.displayText(row, labels));
    const QList<int> values = valueColumns(grid);
    for (const QString &name : choice.valueFields) {
        const int column = grid.columnIndex(name, ColumnScope::Visible);
        if (!values.contains(column))
            continue;
        ChartSeries series { .name = plainTitle(grid.column(column).caption) };
        const int field = grid.dataSet()->findField(name)->index();
        for (int row = 0; row < rows; ++row)
            series.values.append(grid.dataSet()->number(field, row).value_or(packet::Decimal {}).toDouble());
        chart.data.series.append(series);
    }
    QStringList notices;
    const auto isNegative = [](double value) { return value < 0; };
    if (choice.kind == ChartKind::Pie && chart.data.series.size() > 1)
        notices.append(QStringLiteral("占比图只画“%1”").arg(chart.data.series.first().name));
    if (choice.kind == ChartKind::Pie && !chart.data.series.isEmpty() && std::ranges::any_of(chart.data.series.first().values, isNegative))
        notices.append(QStringLiteral("占比图不画负数"));
    if (grid.rowCount() > rows)
        notices.append(QStringLiteral("只画了前 %1 行，共 %L2 行；按要比较的列排序，最前面的就是最大的").arg(rows).arg(grid.rowCount()));
    if (const TDataSet *dataSet = grid.dataSet(); dataSet && dataSet->active())
        notices << dataSet->filterNotice() << dataSet->truncationNotice();
    notices.removeAll(QString());
    chart.notice = notices.join(u'；');
    return chart;
}

} // namespace report
