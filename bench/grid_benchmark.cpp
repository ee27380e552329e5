// Paints a grid with footers, marks, frozen column and row colours at 1920x1080, beside a QTableView over the same rows; compares
// a million rows with a thousand, and scrolling by one row with a full repaint.

#include "bench/pairs.h"
#include "packet/builder.h"
#include "platform/dataset/client_data_set.h"
#include "platform/grid/db_grid.h"

#include <QAbstractTableModel>
#include <QApplication>
#include <QHeaderView>
#include <QScrollBar>
#include <QTableView>

#include <cstdio>
#include <functional>

using namespace platform;

namespace {

constexpr int rounds = 15;
constexpr int repaintsPerRound = 10;
constexpr int columnCount = 16;
constexpr int columnWidth = 118;
constexpr QSize screen(1920, 1080);

packet::PacketPtr scans(int rows)
{
    std::vector<packet::Builder::Column> columns;
    for (int column = 0; column < columnCount; ++column)
        columns.push_back({ "FIELD" + std::to_string(column), {} });
    packet::Builder builder(std::move(columns));
    for (int row = 0; row < rows; ++row) {
        builder.addText(0, std::to_string(770'000'000'000 + qint64(row) * 37));
        builder.addText(1, "站点" + std::to_string(row * 7919 % 400) + "部");
        builder.addTimestamp(2, 1'709'600'000 + row * 3);
        builder.addDecimal(3, packet::Decimal { row * 7907 % 3000 + 10, 2 });
        for (std::size_t column = 4; column < columnCount; ++column)
            builder.addText(column, "扫描员" + std::to_string((row + 31 * int(column)) * 104'729 % 1500));
        builder.endRow();
    }
    return builder.finish();
}

/// The dataset's rows for the rival.
class Rows : public QAbstractTableModel {
public:
    explicit Rows(const TDataSet &dataSet)
        : m_dataSet(dataSet)
    {
    }
    int rowCount(const QModelIndex &) const override { return m_dataSet.recordCount(); }
    int columnCount(const QModelIndex &) const override { return m_dataSet.fieldCount(); }
    QVariant data(const QModelIndex &index, int role) const override
    {
        return role == Qt::DisplayRole ? QVariant(m_dataSet.text(index.column(), index.row())) : QVariant();
    }

private:
    const TDataSet &m_dataSet;
};

/// A dataset in a grid as the screens show it: two footer rows, sort marks, a frozen column, row colours, a two-level title, amounts
/// in line.
struct ShownGrid {
    TCustomClientDataSet dataSet;
    TDataSource source;
    TDBGridEh grid;

    explicit ShownGrid(int rows)
    {
        dataSet.setData(scans(rows));
        source.setDataSet(&dataSet);
        QList<Column> columns;
        for (int column = 0; column < columnCount; ++column) {
            const ColumnFooter count { column == 0 ? FooterKind::Count
                    : column == 3                  ? FooterKind::Sum
                                                   : FooterKind::StaticText,
                QStringLiteral("合计") };
            columns.append({ .fieldName = QStringLiteral("FIELD%1").arg(column),
                .caption = column < 8 ? QStringLiteral("扫描|列%1").arg(column) : QStringLiteral("列%1").arg(column),
                .width = columnWidth,
                .numberForm = column == 3 ? NumberForm::Money : NumberForm::Exact,
                .footers = { count, count },
                .titleButton = true,
                .sortMark = column < 2 ? SortMark::Ascending : SortMark::None,
                .sortKey = column < 2 ? column + 1 : 0 });
        }
        grid.setColumns(columns);
        grid.setFrozenColumns(1);
        grid.setFooterRowCount(2);
        grid.setDataSource(&source);
        grid.onGetCellParams = [](int row, int, CellParameters &parameters) {
            parameters.background = row % 2 == 0 ? QColor(0xc4, 0xc4, 0xff) : QColor(0xdd, 0xdd, 0xff);
        };
        grid.resize(screen);
        grid.show();
        repaint();
    }
    void repaint()
    {
        for (QWidget *part : grid.findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly)) {
            if (part->isVisible())
                part->repaint();
        }
    }
};

void show(QTableView &table, QAbstractTableModel &model)
{
    table.setModel(&model);
    table.horizontalHeader()->setDefaultSectionSize(columnWidth);
    table.verticalHeader()->hide();
    table.setAlternatingRowColors(true);
    table.resize(screen);
    table.show();
    table.viewport()->repaint();
}

template <class Work>
std::function<void()> repeated(Work work)
{
    return [work] {
        for (int time = 0; time < repaintsPerRound; ++time)
            work();
    };
}

/// Moves the view on by one row and paints what that uncovers.
void scrollOn(TDBGridEh &grid)
{
    QScrollBar *bar = grid.verticalScrollBar();
    bar->setValue(bar->value() < bar->maximum() ? bar->value() + 1 : 0);
    QApplication::sendPostedEvents();
    QApplication::processEvents();
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const bool wasQuiet = machineIsQuiet();
    ShownGrid million(1'000'000);
    ShownGrid thousand(1'000);
    Rows model(million.dataSet);
    QTableView table;
    show(table, model);
    QApplication::processEvents(); // nothing is painted before the windows are exposed

    std::vector<Side> sides {
        { "grid, 1,000,000 rows", repeated([&] { million.repaint(); }) },
        { "grid, 1,000 rows", repeated([&] { thousand.repaint(); }) },
        { "QTableView, 1,000,000 rows", repeated([&] {
             table.viewport()->repaint();
             table.horizontalHeader()->viewport()->repaint();
         }) },
        { "grid, one row further", repeated([&] { scrollOn(million.grid); }) },
    };
    runInTurn(sides, rounds);
    for (const Side &side : sides)
        std::printf("%s: median %.2f ms a paint\n", side.name.c_str(), median(side.milliseconds) / repaintsPerRound);
    printRatio(sides[0], sides[2], 0.6);
    printRatio(sides[0], sides[1], 1.1);
    printRatio(sides[3], sides[0], 0.25);
    if (!wasQuiet || !machineIsQuiet())
        std::printf("machine busy: these ratios are no verdict\n");
    return 0;
}
