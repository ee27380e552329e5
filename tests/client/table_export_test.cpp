#include "client/export/row_writer.h"
#include "platform/toolkit/long_work.h"
#include "tests/client/export_fixture.h"
#include "tests/support/small_disk.h"

#include <QApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QPushButton>
#include <QTimer>

using namespace client;
using namespace platform;

namespace {

using TableExport = ExportTest;

TEST_F(TableExport, CsvHoldsWhatIsShown)
{
    EXPECT_EQ(written(QStringLiteral("表.csv")),
        QByteArray("\xEF\xBB\xBF序号,发件 运单编号,发件 网点,时间,件数,费用,比率,体积,签收\r\n"
                   "1,012345678901,北京,2026-02-28 23:59:59,12,1234.5,0.125,2.5,√\r\n"
                   "2,268004223517,上海,1899-12-31 08:00:00,-3,-0.05,123456789012345678.25,1e+30,\r\n"
                   "3,000000000000,北京,,,,,,\r\n"
                   "4,\"\t=1+1\",厦门,1900-03-01 00:00:00,9007199254740993,100,-7.5,-0.5,√\r\n"));
}

TEST_F(TableExport, EditsOrderAndFilterCount)
{
    editAndSort();
    EXPECT_EQ(QString::fromUtf8(written(QStringLiteral("a.csv"))).section(QStringLiteral("\r\n"), 1),
        QStringLiteral("1,\"\t=1+1\",厦门,1900-03-01 00:00:00,9007199254740993,100,-7.5,-0.5,√\r\n"
                       "2,268004223517,上海,1899-12-31 08:00:00,-3,-0.05,123456789012345678.25,1e+30,\r\n"
                       "3,012345678901,\"广州,白云\",2026-03-01 12:30:00,12,7.125,0.125,2.5,√\r\n"
                       "4,000000000000,北京,,,,,,\r\n"
                       "5,\"00\"\"7\",,,,,,,\r\n"));
    m_dataSet.setFilter(QStringLiteral("SITE='上海'"));
    m_dataSet.setFiltered(true);
    EXPECT_EQ(QString::fromUtf8(written(QStringLiteral("a.csv"))).section(QStringLiteral("\r\n"), 1),
        QStringLiteral("1,268004223517,上海,1899-12-31 08:00:00,-3,-0.05,123456789012345678.25,1e+30,\r\n"));
    m_dataSet.close();
    EXPECT_EQ(written(QStringLiteral("a.csv")).count('\n'), 1);
}

TEST_F(TableExport, NumbersAreWrittenAsTheGridShowsThem)
{
    std::string table = "A:decimal,B:integer,C:time\n";
    for (const char *row :
        { "0,0,1970-01-01 00:00:00", "0.01,-1,1969-12-31 23:59:59", "-0.1,9223372036854775807,1969-12-31 00:00:00",
            "10,-9223372036854775808,2026-01-01 01:02:03", "1234567.8901,100,2026-01-01 23:00:00", "-99999999999999999999.5,7,0001-01-01" })
        table += std::string(row) + "\n";
    m_dataSet.setData(packetOf(table));
    m_grid.setColumns({ column(u"A", u"A"), column(u"B", u"B"), column(u"C", u"C") });
    const QStringList lines = QString::fromUtf8(written(QStringLiteral("a.csv"))).split(QStringLiteral("\r\n"));
    for (int row = 0; row < m_grid.rowCount(); ++row)
        EXPECT_EQ(lines[row + 1], QString(m_grid.cellText(row, 0) + u',' + m_grid.cellText(row, 1) + u',' + m_grid.cellText(row, 2)));
}

TEST_F(TableExport, JsonIsReadBackWithItsTypes)
{
    const QJsonObject read = QJsonDocument::fromJson(written(QStringLiteral("a.json"))).object();
    EXPECT_EQ(read[u"columns"].toArray().size(), 9);
    EXPECT_EQ(read[u"truncated"], QJsonValue(false));
    const QJsonArray rows = read[u"rows"].toArray();
    ASSERT_EQ(rows.size(), 4);
    EXPECT_EQ(rows[0],
        (QJsonArray { QStringLiteral("1"), QStringLiteral("012345678901"), QStringLiteral("北京"), QStringLiteral("2026-02-28 23:59:59"),
            12, 1234.5, 0.125, 2.5, QStringLiteral("√") }));
    EXPECT_EQ(rows[2][5], QJsonValue());
    EXPECT_EQ(rows[2][3], QJsonValue(QString()));
}

TEST_F(TableExport, HtmlHoldsNotesTitlesRowsAndFooters)
{
    const QString page
        = QString::fromUtf8(written(QStringLiteral("a.html"), {}, { { QStringLiteral("扫描网点"), QStringLiteral("<北京>") } }));
    EXPECT_TRUE(page.startsWith(u"<!DOCTYPE html>") && page.endsWith(u"</html>\n"));
    for (const char16_t *part : { u"<meta charset=\"utf-8\">", u".t { mso-number-format:\"\\@\" }", u"<h1>月发件清单</h1>",
             u"<tr><th>扫描网点</th><td class=\"t\">&lt;北京&gt;</td></tr>", u"<tr><th>行数</th><td class=\"t\">4</td></tr>",
             u"<thead><tr><th>序号</th><th>发件 运单编号</th>", u"<tbody>\n<tr><td class=\"t\">1</td><td class=\"t\">012345678901</td>",
             u"<td class=\"d\">2026-02-28 23:59:59</td><td class=\"n\">12</td><td class=\"n\">1234.5</td>",
             u"<tfoot>\n<tr><td class=\"t\"></td><td class=\"t\">记录数</td>", u"<td class=\"n\">1334.45</td>" })
        EXPECT_TRUE(page.contains(QString::fromUtf16(part))) << QString::fromUtf16(part).toStdString();
    EXPECT_EQ(page.count(QStringLiteral("<td")), page.count(QStringLiteral("</td>")));
    EXPECT_FALSE(page.contains(QStringLiteral("隐藏")));
}

TEST_F(TableExport, Gb18030HoldsEveryLetter)
{
    std::string table = "CODE:text\n";
    char32_t code = 0x3400; // Han, then emoji
    for (int row = 0; row < 9000; ++row) {
        QString text;
        for (int letter = 0; letter < 4; ++letter, ++code) {
            if (code == 0x9FA6)
                code = 0x1F300;
            text += QString::fromUcs4(&code, 1);
        }
        table += text.toStdString() + "\n";
    }
    m_dataSet.setData(packetOf(table));
    m_grid.setColumns({ column(u"CODE", u"字") });
    written(QStringLiteral("a.csv"), QStringLiteral("gb18030"));
    QProcess reader;
    reader.start(QStringLiteral("iconv"),
        { QStringLiteral("-f"), QStringLiteral("GB18030"), QStringLiteral("-t"), QStringLiteral("UTF-8"), path(QStringLiteral("a.csv")) });
    ASSERT_TRUE(reader.waitForFinished() && reader.exitCode() == 0);
    const QByteArray read = reader.readAllStandardOutput();
    EXPECT_TRUE("\xEF\xBB\xBF" + read == written(QStringLiteral("b.csv"), QStringLiteral("UTF-8")));
    EXPECT_THROW(written(QStringLiteral("c.json"), QStringLiteral("GB18030")), Exception);
    EXPECT_THROW(written(QStringLiteral("c.csv"), QStringLiteral("Big5")), Exception);
    EXPECT_EQ(files(), QStringList({ QStringLiteral("a.csv"), QStringLiteral("b.csv") }));
}

TEST_F(TableExport, TheChosenFilterSetsEndingAndEncoding)
{
    const QStringList filters = exportFilters();
    ASSERT_GT(filters.size(), 2);
    EXPECT_EQ(chosenTarget(QStringLiteral("a"), filters[0]).fileName, QStringLiteral("a.xlsx"));
    const auto target = [](const QString &name) { return chosenTarget(name, QStringLiteral("CSV 文件，GB18030 编码 (*.csv)")); };
    EXPECT_EQ(target(QStringLiteral("a")).fileName, QStringLiteral("a.csv"));
    EXPECT_EQ(target(QStringLiteral("a.CSV")).encoding, QStringLiteral("GB18030"));
    EXPECT_EQ(target(QStringLiteral("a.html")).encoding, QString());
    EXPECT_EQ(chosenTarget(QStringLiteral("a.csv"), QStringLiteral("CSV 文件 (*.csv)")).encoding, QString());
    EXPECT_EQ(chosenTarget(QStringLiteral("a"), QStringLiteral("CSV 文件，Excel 不变形 (*.csv)")).guard, files::TabGuard::Numbers);
}

TEST_F(ExportTest, RowsStandInTheirOrderHoweverManyThreadsWriteThem)
{
    for (const int count : { 1, 4096, 4097, 8192, 20'000 }) {
        std::string rows = "CODE:text,SITE:text\n";
        for (int row = 0; row < count; ++row)
            rows += std::to_string(row) + ",网点" + std::to_string(row * 7919 % count) + "\n";
        m_dataSet.setData(packetOf(rows));
        const QList<QByteArray> lines = written(QStringLiteral("表.txt")).split('\n');
        ASSERT_GT(lines.size(), count);
        for (int row = 0; row < count; ++row)
            ASSERT_EQ(lines[row + 1].split('\t').mid(1, 2),
                QList<QByteArray>({ QByteArray::number(row), "网点" + QByteArray::number(row * 7919 % count) }));
    }
}

class FailingExport : public ExportTest, public testing::WithParamInterface<const char *> {
protected:
    FailingExport()
    {
        written(m_name);
        m_before = contents(m_name);
        load(200'000);
    }
    void load(int rowCount)
    {
        std::string rows = "CODE:text,SITE:text\n";
        for (int row = 0; row < rowCount; ++row)
            rows += std::to_string(row) + ",北京海淀中关村一号营业部\n";
        m_dataSet.setData(packetOf(rows));
    }
    void expectTheOldFileAlone() const
    {
        EXPECT_EQ(contents(m_name), m_before);
        EXPECT_EQ(files(), QStringList(m_name));
    }

    const QString m_name = QStringLiteral("表.%1").arg(QString::fromLatin1(GetParam()));
    QByteArray m_before;
};

TEST_P(FailingExport, LeavesWhatWasThere)
{
    const ExportTable table = exportTable(m_grid, QStringLiteral("表"), {});
    EXPECT_THROW(writeTable(table, { path(m_name) },
                     [](std::int64_t rows) {
                         if (rows > 20'000)
                             throw Abort(QStringLiteral("导出已取消"));
                     }),
        Abort);
    expectTheOldFileAlone();
    const QString nowhere = path(u"没有/" + m_name);
    try {
        writeTable(table, { nowhere }, [](std::int64_t) {});
        ADD_FAILURE() << "written";
    } catch (const Exception &exception) {
        EXPECT_TRUE(exception.message().contains(nowhere)) << exception.what();
    }
    expectTheOldFileAlone();
}

TEST_P(FailingExport, CancelLeavesWhatWasThere)
{
    load(1'000'000); // a fifth of them would be done before anybody could cancel
    QTimer presser;
    QObject::connect(&presser, &QTimer::timeout, [] {
        for (const QWidget *window : QApplication::topLevelWidgets())
            for (auto *button : window->findChildren<QPushButton *>())
                if (button->text().startsWith(u"取消"))
                    button->click();
    });
    presser.start(0);
    EXPECT_THROW(written(m_name), Abort);
    waitForAbandonedWork();
    expectTheOldFileAlone();
}

TEST_P(FailingExport, AFullDiskIsNeverASuccess)
{
    const ExportTable table = exportTable(m_grid, QStringLiteral("表"), {});
    for (const int room : { 0, 100'000, 1'000'000 }) {
        const FileSizeLimit fullDisk(room);
        try {
            writeTable(table, { path(m_name) }, [](std::int64_t) {});
            ADD_FAILURE() << "written on " << room << " bytes";
        } catch (const Exception &exception) {
            const QString &message = exception.message();
            EXPECT_TRUE(message.contains(m_name) && (message.contains(u"磁盘已满") || message.contains(u"空间不足"))) << exception.what();
        }
        expectTheOldFileAlone();
    }
}

TEST_P(FailingExport, AForeignFileBesideItSurvives)
{
    QFile foreign(path(m_name + u".part"));
    ASSERT_TRUE(foreign.open(QIODevice::WriteOnly) && foreign.write("mine") == 4);
    foreign.close();
    EXPECT_NE(written(m_name), m_before);
    EXPECT_EQ(contents(m_name + u".part"), QByteArray("mine"));
    EXPECT_EQ(files().size(), 2);
}

INSTANTIATE_TEST_SUITE_P(Forms, FailingExport, testing::Values("csv", "txt", "json", "xlsx", "html"));

} // namespace
