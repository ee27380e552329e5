#include "tests/report/report_rows.h"

#include "platform/report/output/spreadsheet_export.h"
#include "platform/report/output/text_exports.h"
#include "platform/report/print_db_grid.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <algorithm>
#include <limits>

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
    wide->prepareAllPages();
    int right = 0;
    for (const report::Primitive &primitive : wide->page(1))
        right = std::max(right, primitive.box.x() + primitive.box.width());
    EXPECT_LE(right, 29700 - 200);
    EXPECT_GT(right, 29000);
}

/// Twenty columns beside the code, F0 to F19, and rows for several pages.
class PrintWideGrid : public testing::Test {
protected:
    PrintWideGrid()
    {
        std::string text = "CODE:text";
        QList<Column> columns { { .fieldName = QStringLiteral("CODE"), .caption = QStringLiteral("编号"), .width = 100 } };
        for (int index = 0; index < 20; ++index) {
            text += ",F" + std::to_string(index) + ":text";
            columns.append({ .fieldName = QStringLiteral("F%1").arg(index), .caption = QStringLiteral("列%1").arg(index), .width = 120 });
        }
        for (int row = 0; row < 100; ++row) {
            text += "\nR" + std::to_string(row);
            for (int index = 0; index < 20; ++index)
                text += ",v" + std::to_string(row) + "." + std::to_string(index);
        }
        m_rows.setData(packetOf(text + "\n"));
        m_source.setDataSet(&m_rows);
        m_grid.setDataSource(&m_source);
        m_grid.setColumns(columns);
        m_printer.setDBGridEh(&m_grid);
        m_printer.setTitle(QStringLiteral("宽表"));
    }
    static qreal smallestPoints(const PreparedReport &report)
    {
        qreal points = 100;
        for (const Style &style : report.resources().styles)
            points = std::min(points, style.points);
        return points;
    }

    TCustomClientDataSet m_rows;
    TDataSource m_source;
    TDBGridEh m_grid;
    TPrintDBGridEh m_printer;
};

TEST_F(PrintWideGrid, ColumnsThatDoNotFitGoOnFurtherPagesInReadableType)
{
    const auto prepared = m_printer.prepared();
    const QStringList pages = pagesOf(*prepared);
    EXPECT_GE(smallestPoints(*prepared), 7);
    QStringList found;
    for (int page = 0; page < pages.size(); ++page) {
        const QStringList texts = pages[page].split(u'|');
        EXPECT_TRUE(texts.contains(u"编号")) << "the first column tells the rows apart";
        EXPECT_EQ(texts.last(), QStringLiteral("第%1页/共%2页").arg(page + 1).arg(pages.size()));
        found += texts.filter(QRegularExpression(QStringLiteral("^v")));
        for (const report::Primitive &primitive : prepared->page(page))
            EXPECT_LE(primitive.box.right(), prepared->paper().width());
    }
    EXPECT_EQ(found.size(), 2000);
    found.removeDuplicates();
    EXPECT_EQ(found.size(), 2000) << "each cell stands once";
    // The parts of the same rows follow one another.
    EXPECT_TRUE(pages[1].contains(QStringLiteral("|R0|")) && pages[1].contains(QStringLiteral("|列10|")));
}

TEST_F(PrintWideGrid, DataGoesOutInOnePiece)
{
    const auto prepared = m_printer.prepared();
    const QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("a.csv"));
    CsvExport().exportReport(*prepared, name);
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());
    EXPECT_TRUE(text.contains(QRegularExpression(QStringLiteral("R7;v7\\.0;.*v7\\.19")))) << text.left(2000).toStdString();
}

TEST_F(PrintWideGrid, ThePaperIsThePersons)
{
    PageSetup setup = m_printer.pageSetup();
    setup.wideColumns = WideColumns::Shrink;
    m_printer.setPageSetup(setup);
    const int onA4 = m_printer.prepared()->rowsDone();
    EXPECT_TRUE(pagesOf(*m_printer.prepared()).first().contains(QStringLiteral("|列19|"))) << "all columns on one page";
    setup.paper = { 24100, 13970 };
    setup.margins = { 13, 5, 13, 5 };
    m_printer.setPageSetup(setup);
    EXPECT_LT(m_printer.prepared()->rowsDone(), onA4);
    EXPECT_EQ(m_printer.prepared()->paper(), QSize(24100, 13970));
    setup.turn = Turn::Across;
    m_printer.setPageSetup(setup);
    EXPECT_EQ(m_printer.prepared()->paper(), QSize(13970, 24100));

    m_grid.setFrozenColumns(2);
    setup = { .turn = Turn::Upright, .wideColumns = WideColumns::Split };
    m_printer.setPageSetup(setup);
    for (const QString &page : pagesOf(*m_printer.prepared()))
        EXPECT_TRUE(QString(u'|' + page).contains(QStringLiteral("|编号|列0|"))) << "frozen columns stand on each page";
    m_grid.setFrozenColumns(15);
    EXPECT_GT(pagesOf(*m_printer.prepared()).size(), 1) << "too many frozen columns leave room for the others";
}

TEST_F(PrintWideGrid, LongNotesAreBrokenAndNotCut)
{
    const QString note = QStringLiteral("扫描网点：北京　").repeated(60).trimmed();
    m_printer.setNotes({ note });
    const auto prepared = m_printer.prepared();
    const Page page = prepared->page(0);
    const auto found = std::find_if(page.begin(), page.end(), [](const Primitive &each) { return each.text.contains(u"扫描网点"); });
    ASSERT_NE(found, page.end());
    EXPECT_EQ(QString(found->text).remove(QChar(QChar::LineSeparator)), note);
    EXPECT_GT(found->text.count(QChar(QChar::LineSeparator)), 1);
    for (const Primitive &each : page)
        EXPECT_TRUE(&each == &*found || !each.box.intersects(found->box)) << each.text.toStdString();
}

TEST(PageSetup, WhatIsKeptIsTakenOnlyWhenItMakesSense)
{
    const PageSetup first;
    PageSetup own { .paper = { 24100, 9313 }, .turn = Turn::Upright, .margins = { 13, 5, 13, 6 }, .wideColumns = WideColumns::Split };
    EXPECT_EQ(PageSetup::fromMap(own.toMap(), first), own);
    EXPECT_EQ(PageSetup::fromMap({}, own), own);
    const auto spoilt = [&own, &first](const char *key, const QVariant &value) {
        QVariantMap map = own.toMap();
        map[QLatin1String(key)] = value;
        return PageSetup::fromMap(map, first);
    };
    EXPECT_EQ(spoilt("paper", QSize(0, 5)), first);
    EXPECT_EQ(spoilt("paper", QStringLiteral("A4")), first);
    EXPECT_EQ(spoilt("top", 90), first);
    EXPECT_EQ(spoilt("left", -1), first);
    EXPECT_EQ(spoilt("left", std::numeric_limits<qreal>::quiet_NaN()), first);
    EXPECT_EQ(spoilt("turn", 7).turn, first.turn);
}

TEST_F(PrintGrid, RefusesWhatHasNothingToPrint)
{
    m_rows.emptyDataSet();
    EXPECT_EQ(errorOf([&] { m_printer.prepared(); }), QStringLiteral("没有可打印的数据！"));
    m_printer.setDBGridEh(nullptr);
    EXPECT_EQ(errorOf([&] { m_printer.preview(); }), QStringLiteral("没有可打印的数据！"));
}

} // namespace
