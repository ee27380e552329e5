#include "tests/report/report_rows.h"

#include <QCryptographicHash>
#include <QFile>
#include <QTemporaryDir>

namespace {

using namespace report;
using testing::ElementsAre;

class Pages : public testing::Test {
protected:
    QStringList pages(int rows, const QByteArray &bands)
    {
        m_rows.setData(numberedRows(rows));
        PreparedReport prepared(smallReport(bands), &m_rows);
        return pagesOf(prepared);
    }

    TCustomClientDataSet m_rows;
};

TEST_F(Pages, AreBrokenBetweenRowsAndCountThemselves)
{
    const QByteArray bands = band("title", 10, "T") + band("page-header", 10, "[PAGE#]/[TOTALPAGES]") + band("column-header", 10, "C")
        + band("master", 10, "[N]") + band("column-footer", 10, "p[COUNT()]=[SUM(V)]") + band("page-footer", 10, "F[SUM(V, REPORT)]")
        + band("summary", 10, "S[COUNT()]");
    EXPECT_THAT(pages(4, bands), ElementsAre(QStringLiteral("T|1/2|C|1|2|3|p3=0.3|F0.3"), QStringLiteral("2/2|C|4|p1=0.1|S4|F0.4")));
    EXPECT_THAT(pages(0, bands), ElementsAre(QStringLiteral("T|1/1|C|S0|F0")));
}

TEST_F(Pages, KeepTheSummaryWithTheLastRow)
{
    const QByteArray bands = band("master", 10, "[N]") + band("summary", 20, "S");
    EXPECT_THAT(pages(6, bands), ElementsAre(QStringLiteral("1|2|3|4|5|6|S")));
    EXPECT_THAT(pages(7, bands), ElementsAre(QStringLiteral("1|2|3|4|5|6"), QStringLiteral("7|S")));
    EXPECT_THAT(pages(8, bands), ElementsAre(QStringLiteral("1|2|3|4|5|6|7"), QStringLiteral("8|S")));
}

TEST_F(Pages, KeepGroupHeadersWithTheirFirstRowAndFootersWithTheLast)
{
    const QByteArray bands = band("group-header A", 10, "[G]", "by = G\n") + band("master", 10, "[N]")
        + band("group-footer A", 10, "=[SUM(V)]([COUNT()])") + band("summary", 10, "S[SUM(V)]");
    EXPECT_THAT(pages(12, bands),
        ElementsAre(QStringLiteral("g0|1|2|3|4|5|6|7"), QStringLiteral("8|9|=0.9(9)|g1|10|11"), QStringLiteral("12|=0.3(3)|S1.2")));
    EXPECT_THAT(pages(13, bands),
        ElementsAre(QStringLiteral("g0|1|2|3|4|5|6|7"), QStringLiteral("8|9|=0.9(9)|g1|10|11|12"), QStringLiteral("13|=0.4(4)|S1.3")));
    const QByteArray withTitle = band("title", 50, "T") + band("group-header A", 10, "[G]", "by = G\n") + band("master", 10, "[N]");
    EXPECT_THAT(pages(10, withTitle), ElementsAre(QStringLiteral("T|g0|1|2"), QStringLiteral("3|4|5|6|7|8|9"), QStringLiteral("g1|10")));
}

TEST_F(Pages, RepeatGroupHeadersOrBeginEachOnANewPage)
{
    const QByteArray rest = band("master", 10, "[N]");
    EXPECT_THAT(pages(9, band("group-header", 10, "[G]", "by = G\nrepeat = yes\n") + rest),
        ElementsAre(QStringLiteral("g0|1|2|3|4|5|6|7"), QStringLiteral("g0|8|9")));
    EXPECT_THAT(pages(10, band("group-header", 10, "[G]", "by = G\nrepeat = yes\n") + rest),
        ElementsAre(QStringLiteral("g0|1|2|3|4|5|6|7"), QStringLiteral("g0|8|9|g1|10")));
    EXPECT_THAT(pages(11, band("group-header", 10, "[G]", "by = G\nnew-page = yes\n") + rest),
        ElementsAre(QStringLiteral("g0|1|2|3|4|5|6|7"), QStringLiteral("8|9"), QStringLiteral("g1|10|11")));
}

TEST_F(Pages, NestedGroupsHaveTheirOwnTotals)
{
    m_rows.setData(packetOf("A:text,B:text,V:decimal\nx,1,0.10\nx,1,0.20\nx,2,0.05\ny,2,1000000000000.01\n"));
    PreparedReport prepared(
        smallReport(band("group-header A", 5, "[A]", "by = A\n") + band("group-header B", 5, "[B]", "by = B\n")
            + band("master", 5, "[V]=[SUM(V, GROUP)]") + band("group-footer B", 5, "b[SUM(V)]")
            + band("group-footer A", 5, "a[SUM(V)],[MIN(V)],[MAX(V)],[AVG(V)]") + band("summary", 5, "[SUM(V)] [COUNT(V)]")),
        &m_rows);
    EXPECT_EQ(pagesOf(prepared).join(u'/'),
        QStringLiteral(
            "x|1|0.1=0.1|0.2=0.3|b0.3|2|0.05=0.05|b0.05|a0.35,0.05,0.2,0.1166666667|"
            "y|2|1000000000000.01=1000000000000.01|b1000000000000.01|a1000000000000.01,1000000000000.01,1000000000000.01,1000000000000.01|"
            "1000000000000.36 4"));
}

TEST_F(Pages, RowsGrowWithTheirTextAndTakeTheirNeighboursAlong)
{
    m_rows.setData(packetOf("T:text\n短\n这一行的文字长得多所以需要两行\n"));
    const QByteArray bands = "band master\nheight = 5\nmemo A\nbox = 0 0 30 5\nfont = 宋体 9\ngrow = yes\ntext = [T]\nmemo B\nbox = 30 0 "
                             "10 5\nframe = all\ntext = [LINE#]\n";
    PreparedReport prepared(smallReport(bands), &m_rows);
    prepared.prepareAllPages();
    const Page page = prepared.page(0);
    ASSERT_EQ(page.size(), 4);
    EXPECT_EQ(page[0].box, QRect(1000, 1000, 3000, 500));
    // Two lines of 9 points at 1.3, rounded up, and the padding.
    EXPECT_EQ(page[2].box, QRect(1000, 1500, 3000, 886));
    EXPECT_EQ(page[3].box, QRect(4000, 1500, 1000, 886));
    EXPECT_EQ(page[2].text.count(QChar(QChar::LineSeparator)), 1);
    EXPECT_EQ(prepared.texts(0)[2], QStringLiteral("这一行的文字长得多所以需要两行"));
}

TEST_F(Pages, ATextHigherThanThePageIsCutToIt)
{
    m_rows.setData(packetOf("T:text\n" + std::string(20'000, 'x') + "\n"));
    PreparedReport prepared(smallReport("band master\nheight = 5\nmemo\nbox = 0 0 30 5\ngrow = yes\ntext = [T]\n"), &m_rows);
    prepared.prepareAllPages();
    EXPECT_EQ(prepared.pageCount(), 1);
    EXPECT_EQ(prepared.page(0)[0].box.height(), 8000);
}

TEST_F(Pages, WhatIsTooWideIsMadeSmallerWhenAsked)
{
    m_rows.setData(numberedRows(1));
    Definition wide = smallReport("band master\nheight = 10\nmemo\nbox = 60 0 100 10\ntext = [N]\n");
    wide.fitWidth = true;
    PreparedReport prepared(wide, &m_rows);
    prepared.prepareNextPage();
    EXPECT_EQ(prepared.page(0)[0].box, QRect(4000, 1000, 5000, 500));
    EXPECT_EQ(prepared.resources().styles[prepared.page(0)[0].style].points, 4.5);
}

TEST_F(Pages, AreLaidOutOnDemandAndRefuseChangedRows)
{
    m_rows.setData(numberedRows(100));
    PreparedReport prepared(smallReport(band("master", 10, "[N]/[TOTALPAGES]")), &m_rows);
    EXPECT_TRUE(prepared.prepareNextPage());
    EXPECT_EQ(prepared.pageCount(), 1);
    EXPECT_EQ(prepared.rowsDone(), 8);
    EXPECT_EQ(prepared.texts(0)[0], QStringLiteral("1/?"));
    m_rows.close();
    EXPECT_EQ(errorOf([&] { prepared.prepareNextPage(); }), QStringLiteral("数据在排版时已改变，请重新打印。"));
}

TEST_F(Pages, AreSavedAndRefusedWhenTheFileIsBroken)
{
    m_rows.setData(numberedRows(20));
    const QTemporaryDir directory;
    const QString name = directory.filePath(QStringLiteral("清单.kpages"));
    PreparedReport prepared(smallReport(band("master", 10, "[N]/[TOTALPAGES]")), &m_rows);
    prepared.save(name);
    EXPECT_EQ(pagesOf(*PreparedReport::load(name)), pagesOf(prepared));

    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray good = file.readAll();
    file.close();
    const QString broken = QStringLiteral("保存的报表“%1”不完整或已损坏，请重新打印并保存。").arg(name);
    const auto errorFor = [&](const QByteArray &bytes) {
        QFile changed(name);
        EXPECT_TRUE(changed.open(QIODevice::WriteOnly) && changed.write(bytes) == bytes.size());
        changed.close();
        return errorOf([&] { PreparedReport::load(name); });
    };
    EXPECT_EQ(errorFor(good.left(good.size() - 10)), broken);
    EXPECT_EQ(errorFor(good.left(20)), broken);
    for (const qsizetype place : { qsizetype(20), good.size() / 2, good.size() - 1 }) {
        QByteArray changed = good;
        changed[place] = char(changed[place] ^ 1);
        EXPECT_EQ(errorFor(changed), broken);
    }
    // With a right sum, what is wrong inside is refused as well; the toolkit would say much about it.
    const QtMessageHandler before = qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    for (qsizetype place = 16; place < good.size() - 32; ++place) {
        QByteArray changed = good.chopped(32);
        changed[place] = char(changed[place] ^ 0x81);
        errorFor(changed + QCryptographicHash::hash(changed, QCryptographicHash::Sha256));
        try {
            const auto loaded = PreparedReport::load(name);
            for (int page = 0; page < loaded->pageCount(); ++page)
                loaded->page(page);
        } catch (const Exception &exception) {
            EXPECT_FALSE(exception.message().isEmpty());
        }
    }
    qInstallMessageHandler(before);
    EXPECT_EQ(errorFor("%PDF-1.4"), QStringLiteral("文件“%1”不是保存的报表。").arg(name));
}

} // namespace
