#include "tests/report/report_rows.h"

#include "platform/grid/grid_filter.h"
#include "platform/report/chart_view.h"
#include "platform/report/chart_window.h"
#include "platform/report/print_db_grid.h"

#include <QImage>
#include <QLabel>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QXmlStreamReader>

using namespace platform;
using namespace report;

namespace {

constexpr auto summary = "AREA:text,MAN:text,PIECES:integer,FEE:decimal,NOTE:text\n"
                         "北京,苏文斌,30,1.50,\n"
                         "北京,李雷,10,-8.25,x\n"
                         "上海,韩梅梅,20,,x\n";

class GridCharts : public testing::Test {
protected:
    GridCharts()
    {
        m_rows.setData(packetOf(summary));
        m_source.setDataSet(&m_rows);
        m_grid.setDataSource(&m_source);
        m_grid.setColumns({ { .fieldName = {}, .caption = QStringLiteral("序号") },
            { .fieldName = QStringLiteral("AREA"), .caption = QStringLiteral("片区") },
            { .fieldName = QStringLiteral("MAN"), .caption = QStringLiteral("扫描人") },
            { .fieldName = QStringLiteral("PIECES"), .caption = QStringLiteral("件数"), .numberForm = NumberForm::Quantity },
            { .fieldName = QStringLiteral("FEE"),
                .caption = QStringLiteral("费|金额"),
                .numberForm = NumberForm::Money,
                .footers = { { FooterKind::Sum } } },
            { .fieldName = QStringLiteral("NOTE"), .caption = QStringLiteral("备注") } });
    }
    ChartWindow &open() { return ChartWindow::showFor(m_grid, QStringLiteral("统计")); }
    static QString labels(const ChartWindow &window) { return window.chart().data.labels.join(u'|'); }
    static QList<double> values(const ChartWindow &window) { return window.chart().data.series.first().values; }
    /// Lets the window follow.
    static void settle() { QTest::qWait(10); }

    TCustomClientDataSet m_rows;
    TDataSource m_source;
    TDBGridEh m_grid;
    QTemporaryDir m_directory;
};

TEST_F(GridCharts, BeginWithTheSumOverWhatTellsTheRowsApart)
{
    ChartWindow &window = open();
    EXPECT_EQ(window.choice().labelField, u"MAN");
    EXPECT_EQ(window.choice().valueFields, QStringList(QStringLiteral("FEE")));
    EXPECT_EQ(labels(window), QStringLiteral("苏文斌|李雷|韩梅梅"));
    EXPECT_EQ(values(window), QList<double>({ 1.5, -8.25, 0 }));
    EXPECT_EQ(&open(), &window);
}

TEST_F(GridCharts, RefuseWhatHasNoNumbers)
{
    m_grid.hideColumn(3);
    m_grid.hideColumn(4);
    EXPECT_THROW(open(), Exception);
    m_grid.showColumn(3);
    m_rows.close();
    EXPECT_THROW(open(), Exception);
    EXPECT_FALSE(ChartWindow::of(m_grid));
}

TEST_F(GridCharts, FollowOrderFilterAndResult)
{
    ChartWindow &window = open();
    window.choose({ ChartKind::Bars, QStringLiteral("MAN"), { QStringLiteral("PIECES"), QStringLiteral("FEE") } });
    m_rows.addIndex({ QStringLiteral("up"), QStringLiteral("PIECES"), {} });
    m_rows.setIndexName(QStringLiteral("up"));
    EXPECT_EQ(labels(window), QStringLiteral("李雷|韩梅梅|苏文斌"));
    m_grid.filter().setText(QStringLiteral("bj"));
    settle();
    EXPECT_EQ(labels(window), QStringLiteral("李雷|苏文斌"));
    EXPECT_TRUE(window.chart().notice.contains(QStringLiteral("已筛选")));
    EXPECT_FALSE(window.view().placeOf(1, 1).isNull());
    EXPECT_TRUE(window.view().placeOf(2, 0).isNull());

    m_rows.close();
    settle();
    EXPECT_TRUE(window.view().placeOf(0, 0).isNull());
    m_rows.setData(packetOf(summary));
    settle();
    EXPECT_EQ(window.choice().valueFields.size(), 2); // the same columns, so what was chosen stays
    m_rows.setData(packetOf("AREA:text,PIECES:integer\n北京,5\n上海,6\n"));
    settle();
    EXPECT_EQ(labels(window), QStringLiteral("北京|上海"));
    EXPECT_EQ(values(window), QList<double>({ 5, 6 }));
}

TEST_F(GridCharts, LeadFromABarToItsRow)
{
    ChartWindow &window = open();
    settle();
    QSignalSpy opened(&m_grid, &TDBGridEh::cellDoubleClicked);
    for (const ChartKind kind : { ChartKind::Bars, ChartKind::Lines, ChartKind::Pie }) {
        window.choose({ kind, QStringLiteral("MAN"), { QStringLiteral("PIECES") } });
        m_rows.moveTo(0);
        QTest::mouseClick(&window.view(), Qt::LeftButton, {}, window.view().placeOf(2, 0));
        EXPECT_EQ(m_grid.currentRow(), 2) << int(kind);
        QTest::mouseDClick(&window.view(), Qt::LeftButton, {}, window.view().placeOf(1, 0));
        EXPECT_EQ(m_grid.currentRow(), 1) << int(kind);
    }
    ASSERT_EQ(opened.count(), 3);
    EXPECT_EQ(opened.last().first().toInt(), 1);
}

TEST_F(GridCharts, DrawTheFirstOfManyRowsAndSaySo)
{
    std::string many = "MAN:text,PIECES:integer\n";
    for (int row = 0; row < 10'000; ++row)
        many += std::to_string(row) + ',' + std::to_string(row) + '\n';
    m_rows.setData(packetOf(many));
    ChartWindow &window = open();
    EXPECT_EQ(window.chart().data.labels.size(), mostChartRows);
    EXPECT_TRUE(window.chart().notice.contains(QStringLiteral("只画了前 60 行，共 10,000 行")));
}

TEST_F(GridCharts, SayWhatAPieLeavesOut)
{
    ChartWindow &window = open();
    window.choose({ ChartKind::Pie, QStringLiteral("MAN"), { QStringLiteral("FEE"), QStringLiteral("PIECES") } });
    EXPECT_EQ(window.chart().notice, QStringLiteral("占比图只画“费 金额”；占比图不画负数"));
}

TEST_F(GridCharts, AreSavedAsPictures)
{
    m_rows.edit();
    m_rows.fieldByName(u"MAN")->setAsString(QStringLiteral("<苏&\x01\">"));
    m_rows.post();
    ChartWindow &window = open();
    window.view().save(m_directory.filePath(QStringLiteral("a.png")));
    const QImage image(m_directory.filePath(QStringLiteral("a.png")));
    ASSERT_GT(image.width(), 1000);
    bool hasBar = false;
    for (int x = 0; x < image.width(); ++x)
        hasBar = hasBar || image.pixelColor(x, image.height() / 2) == QColor(0x3b, 0x6e, 0xa5);
    EXPECT_TRUE(hasBar);

    window.view().save(m_directory.filePath(QStringLiteral("a.SVG")));
    QFile file(m_directory.filePath(QStringLiteral("a.SVG")));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QXmlStreamReader xml(&file);
    int bars = 0;
    QStringList texts;
    while (!xml.atEnd()) {
        xml.readNext();
        bars += xml.isStartElement() && xml.name() == u"rect" ? 1 : 0;
        if (xml.isStartElement() && xml.name() == u"text")
            texts.append(xml.readElementText());
    }
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    EXPECT_EQ(bars, 3);
    EXPECT_TRUE(texts.contains(QStringLiteral("<苏& \">"))) << texts.join(u'/').toStdString();

    EXPECT_THROW(window.view().save(m_directory.filePath(QStringLiteral("missing/a.png"))), Exception);
}

TEST_F(GridCharts, StandInThePrintWhileTheyAreOpen)
{
    TPrintDBGridEh printer;
    printer.setDBGridEh(&m_grid);
    const QString before = pagesOf(*printer.prepared()).join(u'/');
    ChartWindow &window = open();
    m_grid.filter().setText(QStringLiteral("bj"));
    const QString with = pagesOf(*printer.prepared()).join(u'/');
    EXPECT_TRUE(with.startsWith(QStringLiteral("已筛选：3 行中的 2 行（含“bj”）|统计|"))) << with.toStdString();
    EXPECT_TRUE(with.contains(QStringLiteral("|苏文斌|"))) << with.toStdString();
    window.close();
    m_grid.filter().clear();
    EXPECT_EQ(pagesOf(*printer.prepared()).join(u'/'), before);
}

} // namespace
