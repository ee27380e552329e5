#include "client/export/export_table.h"

#include "platform/dataset/client_data_set.h"
#include "platform/grid/copied_cells.h"
#include "platform/grid/db_grid.h"
#include "platform/grid/grid_filter.h"
#include "platform/report/chart_window.h"

#include <algorithm>

using namespace client;
using namespace platform;

namespace client {

namespace {

constexpr std::string_view tick = "√";

CellKind kindOf(FieldType type)
{
    switch (type) {
    case FieldType::Integer:
        return CellKind::Integer;
    case FieldType::Decimal:
        return CellKind::Decimal;
    case FieldType::Float:
        return CellKind::Float;
    case FieldType::DateTime:
        return CellKind::Time;
    case FieldType::Text:
        break;
    }
    return CellKind::Text;
}

packet::Dictionary shownTexts(const TDBGridEh &grid, int column)
{
    packet::Dictionary texts;
    texts.offsets.reserve(std::size_t(grid.rowCount()) + 1);
    for (int row = 0; row < grid.rowCount(); ++row) {
        texts.bytes += grid.cellText(row, column).toStdString();
        texts.offsets.push_back(std::uint32_t(texts.bytes.size()));
    }
    return texts;
}

ExportColumn exportColumn(const TDBGridEh &grid, int index, const packet::Packet &packet)
{
    const Column &shown = grid.column(index);
    ExportColumn column { .title = plainTitle(shown.caption), .width = shown.width };
    const TField *field = grid.dataSet() ? grid.dataSet()->findField(shown.fieldName) : nullptr;
    if (field) {
        column.field = field->index();
        column.scale = packet.schema()[std::size_t(column.field)].scale;
        column.ticked = shown.checkedKey.toStdString();
        column.unticked = shown.uncheckedKey.toStdString();
        column.kind = column.isCheckBox() ? CellKind::Text : kindOf(field->type());
    } else {
        column.texts = shownTexts(grid, index);
    }
    for (int row = 0; row < grid.footerRowCount(); ++row) {
        const FooterKind kind = row < shown.footers.size() ? shown.footers[row].kind : FooterKind::None;
        column.footers.append({ grid.footerText(row, index), kind == FooterKind::Sum || kind == FooterKind::Count });
    }
    return column;
}

/// The number of a visible column among the visible ones; -1 when it is not.
int exportedColumn(const TDBGridEh &grid, const QString &field)
{
    const int index = grid.columnIndex(field, ColumnScope::Visible);
    int before = 0;
    for (int column = 0; column < index; ++column)
        before += grid.column(column).visible ? 1 : 0;
    return index < 0 ? -1 : before;
}

std::optional<ExportChart> openChart(const TDBGridEh &grid)
{
    const report::ChartWindow *window = report::ChartWindow::of(grid);
    if (!window || grid.rowCount() == 0)
        return {};
    const report::GridChartChoice &choice = window->choice();
    ExportChart chart { .kind = choice.kind,
        .title = window->chart().data.title,
        .labels = exportedColumn(grid, choice.labelField),
        .values = {},
        .rows = std::min(grid.rowCount(), report::mostChartRows) };
    for (const QString &field : choice.valueFields) {
        if (const int column = exportedColumn(grid, field); column >= 0)
            chart.values.append(column);
    }
    return chart.values.isEmpty() ? std::nullopt : std::optional(chart);
}

} // namespace

std::string_view ExportTable::text(std::size_t column, std::size_t row, std::string &buffer) const
{
    const ExportColumn &shown = columns[column];
    if (shown.field < 0)
        return shown.texts.at(row);
    const std::uint32_t source = rows.source(row);
    const auto field = std::size_t(shown.field);
    if (shown.kind == CellKind::Text && !shown.isCheckBox())
        return rows.overlay().text(field, source);
    buffer.clear();
    rows.overlay().appendText(field, source, buffer);
    if (shown.isCheckBox() && buffer == shown.ticked)
        return tick;
    return shown.isCheckBox() && buffer == shown.unticked ? std::string_view() : buffer;
}

ExportTable exportTable(const TDBGridEh &grid, const QString &title, const QList<ExportNote> &notes)
{
    const auto *dataSet = qobject_cast<const TCustomClientDataSet *>(grid.dataSet());
    ExportTable table { .title = title,
        .notes = notes,
        .columns = {},
        .footerRows = grid.footerRowCount(),
        .rows = dataSet ? dataSet->snapshot() : TCustomClientDataSet().snapshot(),
        .truncated = dataSet && dataSet->truncated(),
        .truncationNotice = dataSet ? dataSet->truncationNotice() : QString() };
    table.notes.append({ QStringLiteral("行数"), QString::number(table.rows.rowCount()) });
    if (table.truncated)
        table.notes.append({ QStringLiteral("注意"), QStringLiteral("结果超过了行数上限，这里只有取到的部分，不是全部数据。") });
    if (const QString notice = dataSet ? dataSet->filterNotice() : QString(); !notice.isEmpty())
        table.notes.append({ QStringLiteral("筛选"), grid.filter().description() + u"（" + notice + u"）" });
    table.chart = openChart(grid);
    for (int index = 0; index < grid.columnCount(); ++index) {
        if (!grid.column(index).visible)
            continue;
        table.columns.push_back(exportColumn(grid, index, table.rows.packet()));
        table.frozenColumns += grid.isFrozen(index) ? 1 : 0;
    }
    return table;
}

} // namespace client
