#include "tests/report/report_rows.h"

#include "platform/report/output/spreadsheet_export.h"
#include "platform/report/output/text_exports.h"
#include "platform/report/print_db_grid.h"

#include <QFile>
#include <QTemporaryDir>

#include <algorithm>

using namespace platform;
using namespace report;

namespace {

class PrintGrid : public testing::Test {
protected:
    PrintGrid()
    {
        m_rows.setData(packetOf("CODE:text,SITE:text,FEE:decimal,PAID:text\n007,北京[1],1.50,1\n008,上海,0.25,0\n009,,12.30,1\n"));
        m_source.setDataSet(&m_rows);
        m_grid.setDataSource(&m_source);
        m_grid.setFooterRowCount(2);
        m_grid.setColumns({
            { .fieldName = QStringLiteral("CODE"), .caption = QStringLiteral("编号"), .width = 80 },
            { .fieldName = QStringLiteral("PAID"),
                .caption = QStringLiteral("寄件|已付"),
                .width = 40,
                .checkedKey = QStringLiteral("1"),
                .uncheckedKey = QStringLiteral("0") },
            { .fieldName = QStringLiteral("SITE"), .caption = QStringLiteral("寄件|网点"), .width = 80 },
            { .fieldName = QStringLiteral("FEE"),
                .caption = QStringLiteral("费用"),
                .width = 60,
                .footers = { { FooterKind::StaticText, QStringLiteral("总金额") }, { FooterKind::Sum } } },
        });
        m_printer.setDBGridEh(&m_grid);
    }

    TCustomClientDataSet m_rows;
    TDataSource m_source;
    TDBGridEh m_grid;
    TPrintDBGridEh m_printer;
};

TEST_F(PrintGrid, PrintsWhatTheScreenShows)
{
    m_printer.setTitle(QStringLiteral("发件[一]"));
    m_printer.pageHeader().left = QStringLiteral("[PAGE#] [x]");
    EXPECT_EQ(pagesOf(*m_printer.prepared()).join(u'/'),
        QStringLiteral("发件[一]|1 [x]|编号|已付|寄件|网点|费用|007|√|北京[1]|1.5|008|上海|0.25|009|√|12.3|总金额|14.05|第1页/共1页"));
    m_grid.setColumnVisible(1, false);
    m_grid.moveColumn(0, 3);
    m_rows.addIndex({ QStringLiteral("down"), QStringLiteral("FEE"), QStringLiteral("FEE") });
    m_rows.setIndexName(QStringLiteral("down"));
    const QString text = pagesOf(*m_printer.prepared()).join(u'/');
    EXPECT_TRUE(text.contains(QStringLiteral("|寄件|费用|编号|12.3|009|北京[1]|1.5|007|上海|0.25|008|"))) << text.toStdString();
}

TEST_F(PrintGrid, NumbersStandInLineAsOnTheScreen)
{
    Column fee = m_grid.column(3);
    fee.numberForm = NumberForm::Money;
    m_grid.setColumn(3, fee);
    m_rows.setData(packetOf("CODE:text,SITE:text,FEE:decimal,PAID:text\n1234567,甲,12345.6,1\n008,乙,-7,0\n"));
    const QString text = pagesOf(*m_printer.prepared()).join(u'/');
    EXPECT_TRUE(text.contains(u"|1234567|√|甲|12,345.60|008|乙|-7.00|总金额|12,338.60|")) << text.toStdString();
}

TEST_F(PrintGrid, FitsThePageAndKeepsColours)
{
    m_grid.onGetCellParams = [](int row, int column, CellParameters &parameters) {
        if (row == 1 && column == 2)
            parameters.background = QColor(255, 155, 55);
    };
    const auto narrow = m_printer.prepared();
    EXPECT_EQ(narrow->paper(), QSize(21000, 29700));
    const report::Page page = narrow->page(0);
    const auto cell = std::find_if(page.begin(), page.end(), [](const report::Primitive &primitive) { return primitive.text == u"上海"; });
    ASSERT_NE(cell, page.end());
    EXPECT_EQ(narrow->resources().styles[cell->style].fill, QColor(255, 215, 175)) << "paler than on the screen";

    m_grid.setColumnWidth(2, 4000);
    const auto wide = m_printer.prepared();
    EXPECT_EQ(wide->paper(), QSize(29700, 21000));
    int right = 0;
    for (const report::Primitive &primitive : wide->page(0))
        right = std::max(right, primitive.box.x() + primitive.box.width());
    EXPECT_LE(right, 29700 - 200);
    EXPECT_GT(right, 29000);
}

TEST_F(PrintGrid, RefusesWhatHasNothingToPrint)
{
    m_rows.emptyDataSet();
    EXPECT_EQ(errorOf([&] { m_printer.prepared(); }), QStringLiteral("没有可打印的数据！"));
    m_printer.setDBGridEh(nullptr);
    EXPECT_EQ(errorOf([&] { m_printer.preview(); }), QStringLiteral("没有可打印的数据！"));
}

} // namespace
