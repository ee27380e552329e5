#include "client/export/table_workbook.h"

#include "platform/files/safe_file.h"
#include "platform/grid/grid_filter.h"
#include "platform/report/chart_window.h"
#include "tests/client/export_fixture.h"

#include <QProcess>
#include <QXmlStreamReader>

using namespace client;
using namespace platform;

namespace {

struct SheetCell {
    QString type; ///< "inlineStr", or "" for a number
    QString text;
    QString format;
    bool bold = false;
    QString font; ///< "name points"
};

struct Sheet {
    QMap<QString, SheetCell> cells; ///< by their names: "A1"
    QMap<QString, QString> attributes; ///< "element.attribute" of everything outside the cells
    QList<double> widths;
    QString foot;
    int rows = 0;
};

/// An .xlsx file as its parts say.
class ReadWorkbook {
public:
    explicit ReadWorkbook(const QString &path)
        : m_path(path)
    {
        readStyles();
        const QByteArray book = part(QStringLiteral("workbook.xml"));
        QXmlStreamReader xml(book);
        while (!xml.atEnd()) {
            if (xml.readNext() != QXmlStreamReader::StartElement)
                continue;
            if (xml.name() == u"definedName" && xml.attributes().value(QStringLiteral("name")) == u"_xlnm.Print_Titles")
                repeated.append(xml.readElementText());
            if (xml.name() != u"sheet")
                continue;
            names.append(xml.attributes().value(QStringLiteral("name")).toString());
            sheets.append(readSheet(int(names.size())));
        }
        EXPECT_FALSE(xml.hasError());
    }

    QStringList names;
    QStringList repeated; ///< the rows that stand on each page
    QList<Sheet> sheets;

    QByteArray part(const QString &name) const
    {
        QProcess unzip;
        unzip.start(QStringLiteral("unzip"), { QStringLiteral("-p"), m_path, u"xl/" + name });
        EXPECT_TRUE(unzip.waitForFinished() && unzip.exitCode() == 0) << "unzip is needed for this test";
        return unzip.readAllStandardOutput();
    }

private:
    void readStyles()
    {
        QMap<QString, QString> codes { { QStringLiteral("0"), QStringLiteral("General") }, { QStringLiteral("1"), QStringLiteral("0") },
            { QStringLiteral("4"), QStringLiteral("#,##0.00") }, { QStringLiteral("49"), QStringLiteral("@") } };
        QList<SheetCell> fonts;
        bool inCells = false;
        const QByteArray styles = part(QStringLiteral("styles.xml"));
        QXmlStreamReader xml(styles);
        while (!xml.atEnd()) {
            xml.readNext();
            if (xml.name() == u"cellXfs")
                inCells = xml.isStartElement();
            if (!xml.isStartElement())
                continue;
            const auto value = [&xml](const char *name) { return xml.attributes().value(QLatin1String(name)).toString(); };
            if (xml.name() == u"numFmt")
                codes.insert(value("numFmtId"), value("formatCode"));
            else if (xml.name() == u"font")
                fonts.append(SheetCell {});
            else if (xml.name() == u"b")
                fonts.last().bold = true;
            else if (xml.name() == u"sz" && !inCells)
                fonts.last().font = value("val");
            else if (xml.name() == u"name")
                fonts.last().font.prepend(value("val") + u' ');
            else if (xml.name() == u"xf" && inCells) {
                m_styles.append(fonts.value(value("fontId").toInt()));
                m_styles.last().format = codes.value(value("numFmtId"));
            }
        }
        EXPECT_FALSE(xml.hasError());
    }
    Sheet readSheet(int number) const
    {
        Sheet sheet;
        const QByteArray bytes = part(QStringLiteral("worksheets/sheet%1.xml").arg(number));
        QXmlStreamReader xml(bytes);
        while (!xml.atEnd()) {
            if (xml.readNext() != QXmlStreamReader::StartElement)
                continue;
            const QXmlStreamAttributes attributes = xml.attributes();
            if (xml.name() == u"c") {
                SheetCell cell = m_styles.value(attributes.value(QStringLiteral("s")).toInt());
                cell.type = attributes.value(QStringLiteral("t")).toString();
                cell.text = xml.readElementText(QXmlStreamReader::IncludeChildElements);
                sheet.cells.insert(attributes.value(QStringLiteral("r")).toString(), cell);
                continue;
            }
            if (xml.name() == u"row")
                ++sheet.rows;
            if (xml.name() == u"oddFooter") {
                sheet.foot = xml.readElementText();
                continue;
            }
            if (xml.name() == u"col")
                sheet.widths.append(attributes.value(QStringLiteral("width")).toDouble());
            for (const QXmlStreamAttribute &attribute : attributes)
                sheet.attributes.insert(xml.name() + u'.' + attribute.name(), attribute.value().toString());
        }
        EXPECT_FALSE(xml.hasError()) << number;
        return sheet;
    }

    QString m_path;
    QList<SheetCell> m_styles;
};

class WorkbookTest : public ExportTest {
protected:
    ReadWorkbook read(const QList<ExportNote> &notes = {}, const QString &title = QStringLiteral("月发件清单"))
    {
        exportGrid(m_grid, { path(QStringLiteral("表.xlsx")) }, title, notes);
        return ReadWorkbook(path(QStringLiteral("表.xlsx")));
    }
    static void expect(const Sheet &sheet, const char *name, const char *format, const QString &text)
    {
        const SheetCell cell = sheet.cells.value(QString::fromLatin1(name));
        EXPECT_EQ(cell.type, QString()) << name;
        EXPECT_EQ(cell.format, QString::fromLatin1(format)) << name;
        EXPECT_EQ(cell.text, text) << name;
    }
    static void expectText(const Sheet &sheet, const char *name, const QString &text)
    {
        const SheetCell cell = sheet.cells.value(QString::fromLatin1(name));
        EXPECT_EQ(cell.type, QStringLiteral("inlineStr")) << name;
        EXPECT_EQ(cell.format, QStringLiteral("@")) << name;
        EXPECT_EQ(cell.text, text) << name;
    }
};

TEST_F(WorkbookTest, CodesStayTextsNumbersAndTimesDoNot)
{
    const ReadWorkbook book = read();
    const Sheet &sheet = book.sheets[0];
    expectText(sheet, "A2", QStringLiteral("1"));
    expectText(sheet, "B2", QStringLiteral("012345678901"));
    expectText(sheet, "B4", QStringLiteral("000000000000"));
    expectText(sheet, "B5", QStringLiteral("=1+1"));
    expectText(sheet, "C3", QStringLiteral("上海"));
    expectText(sheet, "I2", QStringLiteral("√"));
    EXPECT_FALSE(sheet.cells.contains(QStringLiteral("I3")));
    EXPECT_FALSE(sheet.cells.contains(QStringLiteral("D4")));
    expect(sheet, "E2", "0", QStringLiteral("12"));
    expect(sheet, "F2", "#,##0.00", QStringLiteral("1234.5"));
    expect(sheet, "F3", "#,##0.00", QStringLiteral("-0.05"));
    expect(sheet, "G2", "#,##0.000", QStringLiteral("0.125"));
    expect(sheet, "H3", "General", QStringLiteral("1E+30"));
    // What a spreadsheet would change goes as text.
    expectText(sheet, "G3", QStringLiteral("123456789012345678.25"));
    expectText(sheet, "E5", QStringLiteral("9007199254740993"));
    expectText(sheet, "D3", QStringLiteral("1899-12-31 08:00:00"));
    expect(sheet, "D5", "yyyy-mm-dd hh:mm:ss", QStringLiteral("61"));
    const double lastSecond = sheet.cells[QStringLiteral("D2")].text.toDouble();
    EXPECT_EQ(QDateTime(QDate(1899, 12, 30), QTime(0, 0), Qt::UTC).addSecs(qRound64(lastSecond * 86400)).toString(u"yyyy-MM-dd HH:mm:ss"),
        m_grid.cellText(0, m_grid.columnIndex(u"SENT")));
}

TEST_F(WorkbookTest, TheSheetIsReadyForWork)
{
    m_grid.setFrozenColumns(2);
    const ReadWorkbook book = read();
    const Sheet &sheet = book.sheets[0];
    for (const char *title : { "A1", "I1" })
        EXPECT_TRUE(sheet.cells[QString::fromLatin1(title)].bold);
    expectText(sheet, "B1", QStringLiteral("发件 运单编号"));
    EXPECT_EQ(sheet.attributes[QStringLiteral("pane.ySplit")], QStringLiteral("1"));
    EXPECT_EQ(sheet.attributes[QStringLiteral("pane.xSplit")], QStringLiteral("2"));
    EXPECT_EQ(sheet.attributes[QStringLiteral("pane.state")], QStringLiteral("frozen"));
    EXPECT_EQ(sheet.attributes[QStringLiteral("autoFilter.ref")], QStringLiteral("A1:I5"));
    EXPECT_EQ(sheet.attributes[QStringLiteral("ignoredError.numberStoredAsText")], QStringLiteral("1"));
    EXPECT_EQ(sheet.attributes[QStringLiteral("ignoredError.sqref")], QStringLiteral("A1:XFD1048576"));
    ASSERT_EQ(sheet.widths.size(), 9);
    EXPECT_EQ(sheet.cells[QStringLiteral("B2")].font, QStringLiteral("宋体 10"));
    EXPECT_EQ(sheet.cells[QStringLiteral("F2")].font, QStringLiteral("宋体 10"));
}

TEST_F(WorkbookTest, ColumnsAreAsWideAsTheirTexts)
{
    m_dataSet.setData(packetOf("CODE:text,SITE:text,SENT:time,FEE:decimal,OK:text\n"
                               "12345678901234567890,"
        + std::string(QString(60, u'长').toUtf8()) + ",2026-02-28 23:59:59,-1234567.5,1\n"));
    m_grid.setColumns({ column(u"CODE", u"号", 64), column(u"SITE", u"网点"), column(u"SENT", u"时间"), column(u"FEE", u"费用"),
        column(u"OK", u"到件|签收", 300) });
    const QList<double> widths = read().sheets[0].widths;
    ASSERT_EQ(widths.size(), 5);
    const int pixels[] { 20 * 7, 80 * 7, 19 * 7, 13 * 7, 300 }; // a digit is 7 pixels wide; 40 letters are enough
    for (int index = 0; index < 5; ++index) {
        EXPECT_GE(widths[index] * 7, pixels[index] - 1) << index;
        EXPECT_LE(widths[index] * 7, pixels[index] + 20) << index;
    }
}

TEST_F(WorkbookTest, ItPrintsOnePageWideWithItsTitles)
{
    const ReadWorkbook book = read();
    for (const Sheet &sheet : book.sheets) {
        EXPECT_EQ(sheet.attributes[QStringLiteral("pageSetUpPr.fitToPage")], QStringLiteral("1"));
        EXPECT_EQ(sheet.attributes[QStringLiteral("pageSetup.fitToHeight")], QStringLiteral("0"));
        EXPECT_EQ(sheet.attributes[QStringLiteral("pageSetup.paperSize")], QStringLiteral("9"));
        EXPECT_EQ(sheet.attributes[QStringLiteral("printOptions.gridLines")], QStringLiteral("1"));
        EXPECT_TRUE(sheet.foot.endsWith(QStringLiteral("第 &P 页 / 共 &N 页"))) << sheet.foot.toStdString();
    }
    EXPECT_EQ(book.sheets[0].attributes[QStringLiteral("pageSetup.orientation")], QStringLiteral("landscape"));
    EXPECT_EQ(book.sheets[1].attributes[QStringLiteral("pageSetup.orientation")], QStringLiteral("portrait"));
    EXPECT_EQ(book.repeated, QStringList(QStringLiteral("'月发件清单'!$1:$1")));
}

TEST_F(WorkbookTest, FootersAreNumbersBelowTheRows)
{
    const ReadWorkbook book = read();
    const Sheet &sheet = book.sheets[0];
    EXPECT_EQ(sheet.rows, 1 + 4 + 2);
    expectText(sheet, "B6", QStringLiteral("记录数"));
    expect(sheet, "B7", "0", QStringLiteral("4"));
    expectText(sheet, "F6", QStringLiteral("总费用"));
    expect(sheet, "F7", "#,##0.00", QStringLiteral("1334.45"));
    expectText(sheet, "G7", QStringLiteral("123456789012345670.875"));
    EXPECT_TRUE(sheet.cells[QStringLiteral("F7")].bold && sheet.cells[QStringLiteral("G7")].bold);
}

TEST_F(WorkbookTest, EditsAndOrderAreTheGrids)
{
    editAndSort();
    const ReadWorkbook book = read();
    for (int row = 0; row < m_grid.rowCount(); ++row) {
        const QString code = m_grid.cellText(row, m_grid.columnIndex(u"CODE"));
        EXPECT_EQ(book.sheets[0].cells.value(u'B' + QString::number(row + 2)).text, code);
        const bool edited = code == u"012345678901";
        if (edited) {
            expect(book.sheets[0], qPrintable(u'F' + QString::number(row + 2)), "#,##0.00", QStringLiteral("7.125"));
            EXPECT_NEAR(book.sheets[0].cells.value(u'D' + QString::number(row + 2)).text.toDouble(), 46082.520833, 1e-6);
        }
    }
}

TEST_F(WorkbookTest, TheSecondSheetTellsTheConditions)
{
    const ReadWorkbook book
        = read({ { QStringLiteral("扫描网点"), QStringLiteral("北京") }, { QStringLiteral("单号"), QStringLiteral("007\n008") } });
    EXPECT_EQ(book.names, QStringList({ QStringLiteral("月发件清单"), QStringLiteral("查询条件") }));
    const Sheet &notes = book.sheets[1];
    expectText(notes, "A1", QStringLiteral("扫描网点"));
    expectText(notes, "B1", QStringLiteral("北京"));
    expectText(notes, "B2", QStringLiteral("007"));
    expectText(notes, "B3", QStringLiteral("008"));
    expectText(notes, "A4", QStringLiteral("行数"));
    expectText(notes, "B4", QStringLiteral("4"));
}

TEST_F(WorkbookTest, AnOpenChartGoesAlongAndReadsItsCells)
{
    Column fee = m_grid.column(m_grid.columnIndex(u"FEE"));
    fee.numberForm = NumberForm::Money;
    m_grid.setColumn(m_grid.columnIndex(u"FEE"), fee);
    m_grid.filter().setText(QStringLiteral("北京"));
    report::ChartWindow &window = report::ChartWindow::showFor(m_grid, QStringLiteral("费用"));
    window.choose({ report::ChartKind::Pie, QStringLiteral("CODE"), { QStringLiteral("FEE") } });
    const ReadWorkbook book = read();
    ASSERT_EQ(book.names, QStringList({ QStringLiteral("月发件清单"), QStringLiteral("图表"), QStringLiteral("查询条件") }));
    const QByteArray chart = book.part(QStringLiteral("charts/chart1.xml"));
    QXmlStreamReader xml(chart);
    QStringList ranges;
    bool isPie = false;
    while (!xml.atEnd()) {
        xml.readNext();
        isPie = isPie || xml.name() == u"pieChart";
        if (xml.isStartElement() && xml.name() == u"f")
            ranges.append(xml.readElementText());
    }
    EXPECT_TRUE(isPie);
    EXPECT_EQ(ranges.join(u' ').remove(u'\''), QStringLiteral("月发件清单!$F$1 月发件清单!$B$2:$B$3 月发件清单!$F$2:$F$3"));
    QStringList notes;
    for (const SheetCell &cell : book.sheets[2].cells)
        notes.append(cell.text);
    EXPECT_TRUE(notes.contains(QStringLiteral("含“北京”（已筛选：4 行中的 2 行）"))) << notes.join(u'/').toStdString();
}

TEST_F(WorkbookTest, AFullSheetIsFollowedByAnother)
{
    const ExportTable table = exportTable(m_grid, QStringLiteral("明细"), {});
    files::SafeFile file(path(QStringLiteral("a.xlsx")));
    writeWorkbook(
        table, file, [](std::int64_t) {}, 3);
    file.commit();
    const ReadWorkbook book(path(QStringLiteral("a.xlsx")));
    EXPECT_EQ(book.names,
        QStringList({ QStringLiteral("明细"), QStringLiteral("明细 (2)"), QStringLiteral("明细 (3)"), QStringLiteral("查询条件") }));
    expectText(book.sheets[1], "B1", QStringLiteral("发件 运单编号"));
    expectText(book.sheets[1], "B2", QStringLiteral("000000000000"));
    EXPECT_EQ(book.sheets[1].attributes[QStringLiteral("autoFilter.ref")], QStringLiteral("A1:I3"));
    expectText(book.sheets[2], "F2", QStringLiteral("总费用"));
    expect(book.sheets[2], "F3", "#,##0.00", QStringLiteral("1334.45"));
}

TEST_F(WorkbookTest, AnyTitleNamesASheet)
{
    EXPECT_EQ(read({}, QStringLiteral("'收/发:对比*[1]?'")).names[0], QStringLiteral("收 发 对比  1"));
    EXPECT_EQ(read({}, QString(40, u'长')).names[0], QString(31, u'长'));
    EXPECT_EQ(read({}, QString()).names[0], QStringLiteral("数据"));
    const QStringList twice = read({}, QStringLiteral("查询条件")).names;
    EXPECT_EQ(twice, QStringList({ QStringLiteral("查询条件"), QStringLiteral("查询条件 (2)") }));
}

TEST_F(WorkbookTest, ACellHoldsWhatASpreadsheetCan)
{
    m_dataSet.setData(packetOf("CODE:text\n" + std::string(40'000, 'x')
        + "\na\x01"
          "b\n"));
    const ReadWorkbook book = read();
    EXPECT_EQ(book.sheets[0].cells[QStringLiteral("B2")].text, QString(QString(32'766, u'x') + u'…'));
    expectText(book.sheets[0], "B3", QStringLiteral("a_x0001_b"));
}

} // namespace
