#include "client/automation/automation.h"

#include "client/export/screen_conditions.h"
#include "platform/grid/db_grid.h"
#include "platform/grid/grid_filter.h"
#include "platform/report/chart_window.h"
#include "platform/toolkit/exception.h"

#include <QApplication>
#include <QMouseEvent>

#include <algorithm>

using namespace platform;

namespace client {
namespace {

int columnOf(const TDBGridEh &grid, const QJsonObject &arguments)
{
    const QString field = requiredText(arguments, u"field");
    const int column = grid.columnIndex(field);
    if (column < 0)
        throw Exception(QStringLiteral("表格没有字段“%1”").arg(field));
    return column;
}

int rowOf(const TDBGridEh &grid, const QJsonObject &arguments)
{
    const int row = arguments[u"row"].toInt(-1);
    if (row < 0 || row >= grid.rowCount())
        throw Exception(QStringLiteral("表格没有第 %1 行（共 %2 行，从 0 数起）").arg(row).arg(grid.rowCount()));
    return row;
}

QString nameOf(FooterKind kind)
{
    switch (kind) {
    case FooterKind::StaticText:
        return QStringLiteral("text");
    case FooterKind::Sum:
        return QStringLiteral("sum");
    case FooterKind::Count:
        return QStringLiteral("count");
    case FooterKind::None:
        break;
    }
    return QStringLiteral("none");
}

QString nameOf(SortMark mark)
{
    switch (mark) {
    case SortMark::Ascending:
        return QStringLiteral("ascending");
    case SortMark::Descending:
        return QStringLiteral("descending");
    case SortMark::None:
        break;
    }
    return QStringLiteral("none");
}

QJsonObject describe(const Column &column, bool frozen)
{
    QJsonArray footers;
    for (const ColumnFooter &footer : column.footers)
        footers.append(QJsonObject { { QStringLiteral("kind"), nameOf(footer.kind) }, { QStringLiteral("text"), footer.value } });
    return {
        { QStringLiteral("field"), column.fieldName },
        { QStringLiteral("caption"), column.caption },
        { QStringLiteral("width"), column.width },
        { QStringLiteral("visible"), column.visible },
        { QStringLiteral("frozen"), frozen },
        { QStringLiteral("footers"), footers },
        { QStringLiteral("sort"), nameOf(column.sortMark) },
        { QStringLiteral("sortKey"), column.sortKey },
    };
}

int unfilteredRows(const TDBGridEh &grid) { return grid.dataSet() && grid.dataSet()->active() ? grid.dataSet()->unnarrowedCount() : 0; }

report::ChartKind chartKind(const QString &name)
{
    const QStringList names { QStringLiteral("bars"), QStringLiteral("lines"), QStringLiteral("shares") };
    if (!names.contains(name))
        throw Exception(QStringLiteral("不认识的图形“%1”，只有 %2").arg(name, names.join(u'、')));
    return report::ChartKind(names.indexOf(name));
}

void doubleClick(TDBGridEh *grid, int row, int column)
{
    const QRect cell = grid->cellRect(row, column) & grid->viewport()->rect();
    if (!grid->isVisible() || !grid->isEnabled() || cell.isEmpty())
        throw Exception(QStringLiteral("看不见这个单元格，不能双击"));
    const QPointF place = cell.center();
    for (const QEvent::Type type :
        { QEvent::MouseButtonPress, QEvent::MouseButtonRelease, QEvent::MouseButtonDblClick, QEvent::MouseButtonRelease }) {
        const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, place, grid->viewport()->mapToGlobal(place), Qt::LeftButton, held, Qt::NoModifier);
        QApplication::sendEvent(grid->viewport(), &event);
    }
}

} // namespace

QJsonObject Automation::columns(const QJsonObject &arguments)
{
    const TDBGridEh *grid = view(arguments);
    QJsonArray columns;
    for (int index = 0; index < grid->columnCount(); ++index)
        columns.append(describe(grid->column(index), grid->isFrozen(index)));
    return { { QStringLiteral("columns"), columns } };
}

QJsonObject Automation::rows(const QJsonObject &arguments)
{
    const TDBGridEh *grid = view(arguments);
    const bool exact = arguments[u"exact"].toBool();
    const int total = grid->rowCount();
    const int from = std::clamp(arguments[u"from"].toInt(0), 0, total);
    const int end = from + std::clamp(arguments[u"count"].toInt(total), 0, total - from);
    QJsonArray rows;
    for (int row = from; row < end; ++row) {
        QJsonArray cells;
        for (int column = 0; column < grid->columnCount(); ++column)
            cells.append(exact ? grid->cellText(row, column) : grid->displayText(row, column));
        rows.append(cells);
    }
    QJsonObject answer { { QStringLiteral("rows"), rows }, { QStringLiteral("total"), total } };
    if (const QString note = grid->emptyNote(); !note.isEmpty())
        answer.insert(QStringLiteral("note"), note);
    return answer;
}

QJsonObject Automation::footer(const QJsonObject &arguments)
{
    const TDBGridEh *grid = view(arguments);
    const bool exact = arguments[u"exact"].toBool();
    QJsonArray rows;
    for (int row = 0; row < grid->footerRowCount(); ++row) {
        QJsonArray texts;
        for (int column = 0; column < grid->columnCount(); ++column)
            texts.append(exact ? grid->footerText(row, column) : grid->footerDisplayText(row, column));
        rows.append(texts);
    }
    return { { QStringLiteral("rows"), rows } };
}

QJsonObject Automation::title(const QJsonObject &arguments)
{
    TDBGridEh *grid = view(arguments);
    grid->clickTitle(columnOf(*grid, arguments), modifiersOf(arguments));
    return {};
}

QJsonObject Automation::cell(const QJsonObject &arguments)
{
    TDBGridEh *grid = view(arguments);
    const int row = rowOf(*grid, arguments);
    const int column = columnOf(*grid, arguments);
    const QString text = grid->displayText(row, column);
    grid->setCurrentCell(row, column);
    if (arguments[u"doubleClick"].toBool())
        doubleClick(grid, row, column);
    return { { QStringLiteral("text"), text } };
}

/// Without arguments it takes the filter away.
QJsonObject Automation::filter(const QJsonObject &arguments)
{
    TDBGridEh *grid = view(arguments);
    GridFilter &filter = grid->filter();
    if (arguments.contains(u"values")) {
        QStringList values;
        for (const QJsonValue &value : arguments[u"values"].toArray())
            values.append(value.toString());
        filter.setValues({ grid->column(columnOf(*grid, arguments)).fieldName, values,
            arguments[u"others"].toBool() ? QuickFilter::Keep::Others : QuickFilter::Keep::Those });
    } else if (arguments.contains(u"text")) {
        filter.setText(requiredText(arguments, u"text"), arguments.contains(u"field") ? columnOf(*grid, arguments) : -1);
    } else {
        filter.clear();
    }
    return { { QStringLiteral("rows"), grid->rowCount() }, { QStringLiteral("total"), unfilteredRows(*grid) },
        { QStringLiteral("filter"), filter.description() } };
}

QJsonObject Automation::chart(const QJsonObject &arguments)
{
    TDBGridEh *grid = view(arguments);
    auto &window = report::ChartWindow::showFor(*grid, screenTitle(*grid));
    report::GridChartChoice choice = window.choice();
    choice.kind = chartKind(arguments[u"kind"].toString(QStringLiteral("bars")));
    if (arguments.contains(u"field"))
        choice.labelField = grid->column(columnOf(*grid, arguments)).fieldName;
    if (arguments.contains(u"values")) {
        choice.valueFields.clear();
        for (const QJsonValue &field : arguments[u"values"].toArray())
            choice.valueFields.append(field.toString());
    }
    window.choose(choice);
    if (arguments.contains(u"file"))
        window.saveTo(requiredText(arguments, u"file"));
    const report::GridChart chart = window.chart();
    if (arguments[u"close"].toBool())
        window.close();
    return { { QStringLiteral("labels"), QJsonArray::fromStringList(chart.data.labels) }, { QStringLiteral("notice"), chart.notice } };
}

QJsonObject Automation::colour(const QJsonObject &arguments)
{
    const TDBGridEh *grid = view(arguments);
    return { { QStringLiteral("colour"), grid->cellBackground(rowOf(*grid, arguments), columnOf(*grid, arguments)).name() } };
}

} // namespace client
