#include "tests/report/report_rows.h"

#include "platform/report/output/html_export.h"
#include "platform/report/output/rtf_export.h"
#include "platform/report/output/spreadsheet_export.h"
#include "platform/report/output/text_exports.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <random>

using namespace report;

namespace {

class CellTable : public testing::Test {
protected:
    QString written(ExportFilter &filter, PreparedReport &report) const
    {
        const QString name = m_directory.filePath(u'f' + filter.ending());
        filter.exportReport(report, name);
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QStringLiteral("missing");
    }
    QString sheet(PreparedReport &report) const
    {
        SpreadsheetExport filter;
        written(filter, report);
        QProcess unzip;
        unzip.start(QStringLiteral("unzip"),
            { QStringLiteral("-p"), m_directory.filePath(QStringLiteral("f.xlsx")), QStringLiteral("xl/worksheets/sheet1.xml") });
        EXPECT_TRUE(unzip.waitForFinished() && unzip.exitCode() == 0);
        return QString::fromUtf8(unzip.readAllStandardOutput());
    }

    QTemporaryDir m_directory;
    TCustomClientDataSet m_rows;
};

QByteArray memo(int left, int top, int width, int height, const QByteArray &text)
{
    QByteArray box;
    for (const int length : { left, top, width, height })
        box += ' ' + QByteArray::number(length);
    return "memo\nbox =" + box + "\ntext = " + text + "\n";
}

/// Memos anywhere, one over the other, as nobody would design them: every text is in every export exactly once.
TEST_F(CellTable, HoldsEveryTextWhereverItStands)
{
    std::mt19937 random(20260315);
    const auto below = [&random](int limit) { return int(random() % unsigned(limit)); };
    m_rows.setData(numberedRows(5));
    for (int layout = 0; layout < 40; ++layout) {
        QByteArray bands = "band master\nheight = 30\n";
        const int memos = 1 + below(12);
        for (int number = 0; number < memos; ++number)
            bands += memo(below(70), below(25), below(30), below(5), "t" + QByteArray::number(number) + "r[N]e");
        PreparedReport report(smallReport(bands), &m_rows);
        TextExport text;
        CsvExport csv;
        HtmlTableExport html;
        RtfExport rtf;
        const std::pair<const char *, QString> exports[] = { { "txt", written(text, report) }, { "csv", written(csv, report) },
            { "html", written(html, report) }, { "rtf", written(rtf, report) }, { "xlsx", sheet(report) } };
        for (const auto &[name, content] : exports) {
            for (int number = 0; number < memos; ++number) {
                for (int row = 1; row <= 5; ++row) {
                    const QString wanted = QStringLiteral("t%1r%2e").arg(number).arg(row);
                    EXPECT_EQ(content.count(wanted), 1) << name << " layout " << layout << ' ' << wanted.toStdString();
                }
            }
        }
        // Each row of a document declares as many cells as it has.
        for (const QString &row : exports[3].second.split(QStringLiteral("\\row\n")))
            EXPECT_EQ(row.count(QStringLiteral("\\cellx")), row.count(QStringLiteral("\\cell\n"))) << layout;
    }
}

TEST_F(CellTable, TextsOfOneColumnStandSideBySideAndRunNothing)
{
    m_rows.setData(packetOf("A:text,V:decimal\n=1,2\n-5,-3\n＝cmd,0\n"));
    PreparedReport report(
        smallReport("band master\nheight = 10\n" + memo(0, 0, 20, 5, "[A]") + memo(0, 5, 20, 5, "[V]") + memo(40, 0, 20, 5, "[V]")),
        &m_rows);
    CsvExport csv;
    EXPECT_EQ(written(csv, report), QStringLiteral("\"\t=1\";2\r\n2;\r\n-5;-3\r\n-3;\r\n\"\t＝cmd\";0\r\n0;\r\n"));
    // At a tenth of the scale the two lines are one.
    csv.setScaleY(0.1);
    EXPECT_EQ(written(csv, report), QStringLiteral("\"\t=1 2\";2\r\n\"\t-5 -3\";-3\r\n\"\t＝cmd 0\";0\r\n"));
}

TEST_F(CellTable, DataAreTakenOnceHoweverManyPagesThereAre)
{
    m_rows.setData(numberedRows(30));
    const QByteArray bands = band("title", 5, "title") + band("page-header", 5, "head[PAGE#]") + band("column-header", 5, "column")
        + band("group-header A", 5, "group[G]", "by = G\nrepeat = yes\n") + band("master", 10, "row[N]")
        + band("column-footer", 5, "foot[PAGE#]") + band("summary", 5, "sum[SUM(V)]") + band("page-footer", 5, "page[PAGE#]");
    PreparedReport report(smallReport(bands), &m_rows);
    CsvExport csv;
    const QString data = written(csv, report);
    ASSERT_GT(report.pageCount(), 3);
    EXPECT_FALSE(data.contains(u"head") || data.contains(u"foot") || data.contains(u"page"));
    for (const char *once : { "title", "column", "sum3\r" })
        EXPECT_EQ(data.count(QLatin1String(once)), 1) << once;
    EXPECT_EQ(data.count(QStringLiteral("row")), 30);
    EXPECT_LT(data.indexOf(u"title"), data.indexOf(u"column"));
    EXPECT_LT(data.indexOf(u"column"), data.indexOf(u"row1\r"));
    EXPECT_LT(data.indexOf(u"row30"), data.indexOf(u"sum"));
}

} // namespace
