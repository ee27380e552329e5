#include "tests/report/report_rows.h"

#include "platform/report/output/html_export.h"
#include "platform/report/output/page_exports.h"
#include "platform/report/output/rtf_export.h"
#include "platform/report/output/spreadsheet_export.h"
#include "platform/report/output/text_exports.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <optional>

using namespace report;

namespace {

/// A small list: codes that a spreadsheet would spoil, a text with every mark that has a meaning somewhere, and sums.
class Exports : public testing::Test {
protected:
    Exports()
    {
        m_rows.setData(packetOf("CODE:text,FEE:decimal,NOTE:text\n"
                                "012345678901,1234.5,易碎;\"小心\"\n"
                                "000000000002,0.10,=1+1\n"
                                "3,123456789012345678.25,<b>{\\}\n"));
        const QByteArray columns
            = "memo\nbox = 0 0 30 10\ntext = 单号\nmemo\nbox = 30 0 20 10\ntext = 金额\nmemo\nbox = 50 0 30 10\ntext = 备注\n";
        const QByteArray cells = "memo\nbox = 0 0 30 10\ntext = [CODE]\nfill = #ffee00\nmemo\nbox = 30 0 20 10\ntext = [FEE]\nformat = "
                                 "#,##0.00\nfont = 黑体 9 bold\n"
                                 "memo\nbox = 50 0 30 10\ntext = [NOTE]\n";
        m_report.emplace(
            smallReport(band("page-header", 10, "第[PAGE#]页") + "band column-header\nheight = 10\n" + columns
                + "band master\nheight = 25\n" + cells + "band summary\nheight = 10\nmemo\nbox = 30 0 20 10\ntext = [COUNT()] 票\n"),
            &m_rows);
    }
    QString path(const QString &name) const { return m_directory.filePath(name); }
    QByteArray written(ExportFilter &filter)
    {
        const QString name = path(u'f' + filter.ending());
        filter.exportReport(*m_report, name);
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
    }
    static QString outputOf(const QString &program, const QStringList &arguments)
    {
        QProcess process;
        process.start(program, arguments);
        EXPECT_TRUE(process.waitForFinished() && process.exitCode() == 0) << program.toStdString() << " is needed for this test";
        return QString::fromUtf8(process.readAllStandardOutput());
    }
    QStringList files() const { return QDir(m_directory.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name); }

    QTemporaryDir m_directory;
    TCustomClientDataSet m_rows;
    std::optional<PreparedReport> m_report;
};

TEST_F(Exports, CsvHoldsTheDataOnceAndExactly)
{
    CsvExport csv;
    EXPECT_EQ(written(csv),
        QByteArray("\xEF\xBB\xBF单号;金额;备注\r\n"
                   "012345678901;1234.5;\"易碎;\"\"小心\"\"\"\r\n"
                   "000000000002;0.1;\"\t=1+1\"\r\n"
                   "3;123456789012345678.25;<b>{\\}\r\n"
                   ";3 票;\r\n"));
    csv.setDelimiter(',');
    EXPECT_TRUE(written(csv).contains(QByteArray("\r\n012345678901,1234.5,\"易碎;\"\"小心\"\"\"\r\n")));
}

TEST_F(Exports, TextKeepsThePages)
{
    TextExport text;
    const QByteArray bytes = written(text);
    EXPECT_TRUE(bytes.startsWith("\xEF\xBB\xBF      第1页\r\n"));
    const QStringList pages = QString::fromUtf8(bytes).split(u'\f');
    ASSERT_EQ(pages.size(), 2);
    EXPECT_TRUE(pages[1].contains(QRegularExpression(QStringLiteral("\n *3 +123,456,789,012,345,678\\.25 +<b>\\{\\\\\\}\r\n"))));
}

TEST_F(Exports, TheSpreadsheetHasRealNumbersAndUntouchedCodes)
{
    SpreadsheetExport sheet;
    written(sheet);
    const QString cells = outputOf(
        QStringLiteral("unzip"), { QStringLiteral("-p"), path(QStringLiteral("f.xlsx")), QStringLiteral("xl/worksheets/sheet1.xml") });
    const auto cell = [&cells](const QString &name) {
        const auto found = QRegularExpression(QStringLiteral("<c r=\"%1\"[^>]*>(.*?)</c>").arg(name)).match(cells);
        return found.captured(1);
    };
    EXPECT_EQ(cell(QStringLiteral("A2")), QStringLiteral("<is><t>012345678901</t></is>"));
    EXPECT_EQ(cell(QStringLiteral("B2")), QStringLiteral("<v>1234.5</v>"));
    EXPECT_EQ(cell(QStringLiteral("B4")), QStringLiteral("<is><t>123,456,789,012,345,678.25</t></is>"));
    EXPECT_EQ(cell(QStringLiteral("C3")), QStringLiteral("<is><t>=1+1</t></is>"));
    EXPECT_TRUE(cells.contains(QStringLiteral("numberStoredAsText=\"1\"")));
    const auto styles = [&] {
        return outputOf(QStringLiteral("unzip"), { QStringLiteral("-p"), path(QStringLiteral("f.xlsx")), QStringLiteral("xl/styles.xml") });
    };
    EXPECT_FALSE(styles().contains(QStringLiteral("FFFFEE00")));
    EXPECT_FALSE(styles().contains(QStringLiteral("<b/>")));
    sheet.setLooks(CellLook::FillColor | CellLook::FontStyle);
    written(sheet);
    EXPECT_TRUE(styles().contains(QStringLiteral("FFFFEE00")));
    EXPECT_TRUE(styles().contains(QStringLiteral("<b/>")));
    EXPECT_FALSE(styles().contains(QStringLiteral("黑体")));
}

TEST_F(Exports, MarkupIsEscaped)
{
    HtmlTableExport html;
    const QString page = QString::fromUtf8(written(html));
    EXPECT_EQ(page.count(QStringLiteral("<table>")), 2);
    EXPECT_TRUE(page.contains(QRegularExpression(
        QStringLiteral("<td class=\"s\\d+ t\" colspan=\"1\">012345678901</td><td class=\"s\\d+\" colspan=\"2\">1,234.50</td>"))));
    EXPECT_TRUE(page.contains(QStringLiteral("&lt;b&gt;{\\}")));
    RtfExport rtf;
    const QString document = QString::fromUtf8(written(rtf));
    EXPECT_TRUE(document.startsWith(QStringLiteral("{\\rtf1")));
    EXPECT_TRUE(document.contains(QStringLiteral(" <b>\\{\\\\\\}\\cell")));
    EXPECT_TRUE(document.contains(QStringLiteral("\\u21333?\\u21495?\\cell"))); // 单号
    EXPECT_EQ(document.count(QStringLiteral("\\page\n")), 1);
    int depth = 0;
    for (qsizetype place = 0; place < document.size(); ++place) {
        if (document[place] == u'\\')
            ++place;
        else if (document[place] == u'{' || document[place] == u'}')
            depth += document[place] == u'{' ? 1 : -1;
    }
    EXPECT_EQ(depth, 0);
}

TEST_F(Exports, ThePdfCanBeSearchedForEveryText)
{
    // 月, 日 and 金 share their glyphs with radicals, by which a PDF would name them.
    m_rows.setData(packetOf("CODE:text,FEE:decimal,NOTE:text\n012345678901,1,月日飞网\n"));
    PdfExport pdf;
    PreparedReport report(
        smallReport("band master\nheight = 10\nmemo\nbox = 0 0 40 10\ntext = [CODE] 金额\nmemo\nbox = 40 0 40 10\ntext = [NOTE]\n"),
        &m_rows);
    pdf.exportReport(report, path(QStringLiteral("f.pdf")));
    EXPECT_EQ(outputOf(QStringLiteral("pdftotext"), { QStringLiteral("-layout"), path(QStringLiteral("f.pdf")), QStringLiteral("-") })
                  .simplified(),
        QStringLiteral("012345678901 金额 月日飞网"));
}

TEST_F(Exports, PicturesAreOneAPage)
{
    JpegExport jpeg;
    jpeg.setResolution(50);
    jpeg.exportReport(*m_report, path(QStringLiteral("图.jpg")));
    EXPECT_EQ(files(), (QStringList { QStringLiteral("图-1.jpg"), QStringLiteral("图-2.jpg") }));
    const QImage image(path(QStringLiteral("图-1.jpg")));
    EXPECT_EQ(image.size(), QSize(197, 197));
    // The first row's code lies on yellow.
    const QColor yellow = image.pixelColor(70, 61);
    EXPECT_GT(yellow.red(), 240);
    EXPECT_LT(yellow.blue(), 60);
}

TEST_F(Exports, TheEndingChoosesTheFilter)
{
    CsvExport csv;
    SpreadsheetExport sheet;
    EXPECT_EQ(filterFor({ &csv, &sheet }, QStringLiteral("x.XLSX")), &sheet);
    EXPECT_EQ(filterFor({ &csv, &sheet }, QStringLiteral("x.doc")), nullptr);
}

} // namespace
