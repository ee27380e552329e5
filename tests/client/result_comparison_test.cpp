#include "client/result_comparison.h"

#include "client/result_window.h"
#include "platform/grid/grid_columns.h"
#include "platform/toolkit/application.h"
#include "tests/support/packets.h"
#include "tests/support/print_qstring.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>

using namespace client;
using namespace platform;

namespace {

struct Result {
    explicit Result(std::string_view table, const GridColumns &columns)
    {
        rows.setData(packetOf(table));
        source.setDataSet(&rows);
        grid.setDataSource(&source);
        grid.setColumns(columns);
    }
    TClientDataSetEx rows;
    TDataSource source;
    TDBGridEh grid;
};

QStringList linesOf(const TDBGridEh &grid)
{
    QStringList lines;
    for (int row = 0; row < grid.rowCount(); ++row) {
        QStringList cells;
        for (int column = 0; column < grid.columnCount(); ++column)
            cells.append(grid.cellText(row, column));
        lines.append(cells.join(u'|'));
    }
    return lines;
}

QStringList compared(const Result &before, const Result &after)
{
    const auto window = compareResults(Application, { before.grid, QStringLiteral("A") }, { after.grid, QStringLiteral("B") });
    return linesOf(*window->resultGrid);
}

TEST(ResultComparison, PairsRowsByWaybillAndThoseOfOneWaybillByWhatIsEqual)
{
    const GridColumns columns { text("BILL_CODE", u"运单编号"), text("SITE", u"网点"), number("WEIGHT", u"重量") };
    const std::string head = "BILL_CODE:text,SITE:text,WEIGHT:decimal\n";
    const Result before(head + "1,北京,1\n2,上海,2\n2,上海,3\n3,厦门,4\n4,西安,\n", columns);
    const Result after(head + "5,大连,9\n2,上海,3\n1,北京,1\n2,广州,2\n4,西安,7\n", columns);
    EXPECT_EQ(compared(before, after),
        QStringList({ QStringLiteral("仅有：B|5|大连|9"), QStringLiteral("改变|2|上海 → 广州|2"), QStringLiteral("改变|4|西安|（空） → 7"),
            QStringLiteral("仅有：A|3|厦门|4") }));
    EXPECT_EQ(compared(before, before), QStringList());
}

TEST(ResultComparison, WithoutWaybillsTheColumnsWithoutSumsAreTheKey)
{
    const GridColumns columns { text("SITE", u"网点"), number("PIECES", u"票数").sum(u"总票数") };
    const Result before("SITE:text,PIECES:integer\n北京,10\n上海,5\n", columns);
    const Result after("SITE:text,PIECES:integer\n上海,6\n北京,10\n", columns);
    EXPECT_EQ(compared(before, after), QStringList(QStringLiteral("改变|上海|5 → 6")));
}

TEST(ResultComparison, RowsThatAllHaveTheSameWaybillAreNoMoreWorkThanOthers)
{
    const GridColumns columns { text("BILL_CODE", u"运单编号"), text("SITE", u"网点") };
    const auto rowsOf = [](const char *waybill, char side) {
        std::string rows = "BILL_CODE:text,SITE:text\n";
        for (int row = 0; row < 40'000; ++row)
            rows += (waybill ? waybill : std::to_string(row)) + ',' + side + std::to_string(row) + '\n';
        return rows;
    };
    const auto timeOf = [&](const char *waybill) {
        const Result before(rowsOf(waybill, 'a'), columns);
        const Result after(rowsOf(waybill, 'b'), columns);
        QElapsedTimer timer;
        timer.start();
        EXPECT_EQ(compared(before, after).size(), 40'000);
        return timer.elapsed();
    };
    EXPECT_LT(timeOf("1"), 5 * timeOf(nullptr) + 200);
}

} // namespace
