#include "tests/report/report_rows.h"

#include "platform/report/layout/bar_code.h"
#include "platform/report/layout/chart.h"
#include "platform/report/output/printing.h"
#include "platform/report/preview/page_setup_dialog.h"
#include "platform/report/preview/page_view.h"
#include "platform/report/preview/preview_window.h"
#include "platform/report/report.h"
#include "platform/toolkit/application.h"
#include "tests/support/small_disk.h"

#include <QAction>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QDoubleSpinBox>
#include <QFileInfo>
#include <QLabel>
#include <QListView>
#include <QPrinter>
#include <QProcess>
#include <QPushButton>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <functional>
#include <memory>

using namespace platform;
using namespace report;

namespace {

QString statusOf(const PreviewWindow &window)
{
    QStringList texts;
    for (const QLabel *label : window.findChildren<QLabel *>())
        texts.append(label->text());
    return texts.filter(QStringLiteral("第 ")).value(0);
}

TEST(Preview, ShowsTheFirstPageAtOnceAndLaysOutTheRest)
{
    TCustomClientDataSet rows;
    rows.setData(numberedRows(400));
    PreparedReport prepared(smallReport(band("master", 10, "no[N]")), &rows);
    PreviewWindow window(prepared, {}, allPreviewButtons);
    EXPECT_EQ(window.pageCount(), 1);
    window.show();
    EXPECT_TRUE(QTest::qWaitFor([&] { return prepared.isComplete(); }));
    QTest::qWait(50);
    EXPECT_EQ(statusOf(window), QStringLiteral("第 1 页，共 50 页"));

    EXPECT_TRUE(window.find(QStringLiteral("NO399")));
    EXPECT_EQ(window.view()->currentPage(), 49);
    EXPECT_TRUE(window.find(QStringLiteral("no17"), PreviewWindow::Direction::Backward)); // no179
    EXPECT_EQ(window.view()->currentPage(), 22);
    EXPECT_FALSE(window.find(QStringLiteral("no401")));

    auto *pageBox = window.findChild<QSpinBox *>();
    pageBox->setValue(7);
    EXPECT_EQ(window.view()->currentPage(), 6);
    window.view()->setZoom(PageZoom::WholePage);
    EXPECT_EQ(window.view()->currentPage(), 6);
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
}

TEST(Preview, StopsLayingOutWhenAskedAndFindsBeyond)
{
    TCustomClientDataSet rows;
    rows.setData(numberedRows(40'000));
    PreparedReport prepared(smallReport(band("master", 10, "no[N]")), &rows);
    PreviewWindow window(prepared, {}, allPreviewButtons);
    window.show();
    QTest::qWait(30);
    EXPECT_TRUE(statusOf(window).contains(QStringLiteral("正在排版")));
    QTest::mouseClick(window.findChild<QPushButton *>(), Qt::LeftButton);
    const int pages = window.pageCount();
    QTest::qWait(60);
    EXPECT_EQ(window.pageCount(), pages);
    EXPECT_TRUE(statusOf(window).contains(QStringLiteral("排版已停止")));
    EXPECT_TRUE(window.find(QStringLiteral("no1000")));
    EXPECT_EQ(window.view()->currentPage(), 124);
}

TEST(Preview, RowsThatChangeMeanwhileAreToldOnceAndThePagesStay)
{
    TCustomClientDataSet rows;
    rows.setData(numberedRows(40'000));
    PreparedReport prepared(smallReport(band("master", 10, "no[N]")), &rows);
    QStringList told;
    const auto connection
        = QObject::connect(Application, &TApplication::happened, [&told](const QString &kind, const QVariantMap &particulars) {
              if (kind == u"error")
                  told.append(particulars[QStringLiteral("text")].toString());
          });
    Application->setMessageResponder([](const MessageRequest &) { return idOk; });
    PreviewWindow window(prepared, {}, allPreviewButtons);
    window.show();
    QTest::qWait(30);
    rows.setData(numberedRows(7));
    QTest::qWait(100);
    EXPECT_EQ(told, QStringList(QStringLiteral("数据在排版时已改变，请重新打印。")));
    const int pages = window.pageCount();
    EXPECT_GT(pages, 1);
    EXPECT_TRUE(statusOf(window).contains(u"排版已停止"));
    EXPECT_TRUE(window.find(QStringLiteral("no2")));
    EXPECT_EQ(window.pageCount(), pages);
    Application->setMessageResponder({});
    QObject::disconnect(connection);
}

TEST(Preview, OffersOnlyWhatItIsGiven)
{
    TCustomClientDataSet rows;
    rows.setData(numberedRows(1));
    PreparedReport prepared(smallReport(band("master", 10, "no[N]")), &rows);
    const auto tools = [&prepared](PreviewButtons buttons) {
        const PreviewWindow window(prepared, {}, buttons);
        QStringList texts;
        for (const QAction *action : window.findChildren<QAction *>())
            texts.append(action->text());
        return texts;
    };
    const std::pair<PreviewButton, QString> buttons[] { { PreviewButton::Load, QStringLiteral("打开") },
        { PreviewButton::Save, QStringLiteral("保存") }, { PreviewButton::Print, QStringLiteral("打印") },
        { PreviewButton::Find, QStringLiteral("查找") }, { PreviewButton::Export, QStringLiteral("导出") },
        { PreviewButton::Exit, QStringLiteral("关闭") } };
    for (const auto &[button, text] : buttons) {
        EXPECT_TRUE(tools(button).contains(text)) << text.toStdString();
        EXPECT_FALSE(tools(allPreviewButtons & ~PreviewButtons(button)).contains(text)) << text.toStdString();
    }
}

TEST(Preview, ShowsPagesInPairs)
{
    TCustomClientDataSet rows;
    rows.setData(numberedRows(320));
    PreparedReport prepared(smallReport(band("master", 10, "no[N]")), &rows);
    prepared.prepareAllPages();
    ASSERT_EQ(prepared.pageCount(), 40);
    PreviewWindow window(prepared, {}, allPreviewButtons);
    window.show();
    const auto tool = [&window](const QString &text) {
        for (QAction *action : window.findChildren<QAction *>()) {
            if (action->text() == text)
                return action->trigger();
        }
        ADD_FAILURE() << text.toStdString();
    };
    EXPECT_EQ(window.view()->currentPage(), 0) << "it begins at the first one, whatever size it gets";
    const qreal alone = window.view()->percent();
    tool(QStringLiteral("双页"));
    EXPECT_LT(window.view()->percent(), alone * 0.55);
    window.view()->setZoom(PageZoom::Percent, 100);
    tool(QStringLiteral("下页"));
    EXPECT_EQ(window.view()->currentPage(), 2);
    EXPECT_TRUE(window.find(QStringLiteral("no168"))); // at the top of the right page of its pair
    EXPECT_EQ(window.view()->currentPage(), 20);
    tool(QStringLiteral("双页"));
    EXPECT_EQ(window.view()->pagesAcross(), 1);
}

TEST(Preview, ASearchCanBeCancelled)
{
    TCustomClientDataSet rows;
    rows.setData(numberedRows(400'000));
    PreparedReport prepared(smallReport(band("master", 10, "no[N]")), &rows);
    PreviewWindow window(prepared, {}, allPreviewButtons);
    window.show();
    QTimer presser;
    QString shown;
    QObject::connect(&presser, &QTimer::timeout, [&shown] {
        for (const QWidget *other : QApplication::topLevelWidgets()) {
            for (auto *button : other->findChildren<QPushButton *>()) {
                if (!button->isVisible() || !button->text().startsWith(u"取消"))
                    continue;
                shown = other->findChild<QLabel *>()->text();
                button->click();
            }
        }
    });
    presser.start(20);
    EXPECT_FALSE(window.find(QStringLiteral("nowhere")));
    EXPECT_TRUE(shown.contains(QStringLiteral("正在查找…"))) << shown.toStdString();
    EXPECT_LT(window.pageCount(), 50'000);
    EXPECT_TRUE(window.find(QStringLiteral("no17"))) << "the next search begins where the person is";
}

TEST(Preview, APaperMakesSenseBeforeItIsTaken)
{
    PageSetupDialog dialog({}, nullptr);
    auto *papers = dialog.findChild<QComboBox *>();
    const auto choose = [&](const QString &name) {
        papers->setCurrentIndex(papers->findText(name));
        Q_EMIT papers->activated(papers->currentIndex());
    };
    const auto *ok = dialog.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok);
    EXPECT_EQ(dialog.setup(), PageSetup());
    choose(QStringLiteral("241 连续纸 三等分"));
    EXPECT_EQ(dialog.setup().paper, QSize(24100, 9313)) << "not as the boxes round it";
    EXPECT_EQ(dialog.setup().margins, QMarginsF(13, 10, 13, 10)) << "beside the holes";
    EXPECT_TRUE(ok->isEnabled());
    const QList<QDoubleSpinBox *> lengths = dialog.findChildren<QDoubleSpinBox *>();
    for (QDoubleSpinBox *length : lengths) {
        if (length->isEnabled())
            length->setValue(40);
    }
    EXPECT_FALSE(ok->isEnabled());
    choose(QStringLiteral("自定义"));
    for (QDoubleSpinBox *length : lengths)
        length->setValue(length->minimum() + (length->minimum() > 0 ? 250 : 5));
    EXPECT_TRUE(ok->isEnabled());
    EXPECT_EQ(dialog.setup().paper, QSize(30000, 30000));
}

TEST(Preview, LaysOutAnewForAnotherPaper)
{
    TCustomClientDataSet rows;
    rows.setData(numberedRows(40));
    const auto layOut = [&rows](const PageSetup &setup) {
        Definition report = smallReport(band("master", 10, "no[N]"));
        report.paper = setup.paper;
        return std::make_unique<PreparedReport>(report, &rows);
    };
    const auto first = layOut({ .paper = { 10000, 10000 } });
    PreviewWindow window(*first, {}, allPreviewButtons, nullptr, { {}, layOut });
    window.show();
    window.changePaper({ .paper = { 10000, 60000 } });
    EXPECT_TRUE(QTest::qWaitFor([&] { return statusOf(window).contains(u"共 1 页"); })) << statusOf(window).toStdString();
    // What cannot be laid out leaves the pages.
    EXPECT_THROW(window.changePaper({ .paper = { 10000, 2500 } }), Exception);
    EXPECT_EQ(window.pageCount(), 1);
    EXPECT_TRUE(window.find(QStringLiteral("no39")));
}

TEST(Preview, KeepsItsZoomAndItsPageWithinBounds)
{
    TCustomClientDataSet rows;
    rows.setData(numberedRows(40));
    PreparedReport prepared(smallReport(band("master", 10, "no[N]")), &rows);
    prepared.prepareAllPages();
    PreviewWindow window(prepared, {}, allPreviewButtons);
    window.show();
    auto *zoom = window.findChild<QComboBox *>();
    const auto type = [&](const QString &text) {
        zoom->setEditText(text);
        Q_EMIT zoom->textActivated(text);
        return window.view()->percent();
    };
    EXPECT_EQ(type(QStringLiteral("75%")), 75);
    EXPECT_EQ(type(QStringLiteral("0")), 20);
    EXPECT_EQ(type(QStringLiteral("1e9")), 500);
    EXPECT_EQ(type(QStringLiteral("大")), 500);
    EXPECT_EQ(zoom->currentText(), QStringLiteral("500%"));

    auto *pageBox = window.findChild<QSpinBox *>();
    pageBox->setValue(99);
    EXPECT_EQ(window.view()->currentPage(), 4);
    // Enter belongs to the boxes: it must not close the window.
    QTest::keyClick(pageBox, Qt::Key_Return);
    QTest::keyClick(zoom, Qt::Key_Return);
    EXPECT_TRUE(window.isVisible());
    const auto *thumbnails = window.findChild<QListView *>()->model();
    EXPECT_EQ(thumbnails->rowCount(), 5);
    EXPECT_FALSE(thumbnails->index(4, 0).data(Qt::DecorationRole).value<QPixmap>().isNull());
}

/// A printer that writes a file takes the same way as one that takes paper.
TEST(Printing, SendsTheChosenPagesAndCanBeBrokenOff)
{
    TCustomClientDataSet rows;
    rows.setData(numberedRows(40));
    PreparedReport prepared(smallReport(band("master", 10, "no[N]")), &rows);
    prepared.prepareAllPages();
    const QTemporaryDir directory;
    const auto printed = [&](int from, int to, const std::function<bool(int)> &goesOn) {
        const QString file = directory.filePath(QStringLiteral("printed.pdf"));
        QFile::remove(file);
        QPrinter printer(QPrinter::HighResolution);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(file);
        setReportPaper(printer, prepared);
        printPages(prepared, printer, from, to, goesOn);
        QProcess reader;
        reader.start(QStringLiteral("pdftotext"), { file, QStringLiteral("-") });
        EXPECT_TRUE(reader.waitForFinished());
        return QString::fromUtf8(reader.readAllStandardOutput()).simplified().remove(u'\f');
    };
    EXPECT_EQ(printed(2, 3, {}), QStringLiteral("no9 no10 no11 no12 no13 no14 no15 no16 no17 no18 no19 no20 no21 no22 no23 no24"));
    int seen = 0;
    printed(1, 5, [&seen](int done) {
        seen = done;
        return done < 2;
    });
    EXPECT_EQ(seen, 2);
}

TEST(Printing, ThePaperIsTheReportsAndAFileIsWholeOrNotThere)
{
    TCustomClientDataSet rows;
    rows.setData(numberedRows(1));
    Definition across = smallReport(band("master", 10, "no[N]"));
    across.paper = { 29700, 21000 };
    PreparedReport prepared(across, &rows);
    prepared.prepareAllPages();
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    setReportPaper(printer, prepared);
    EXPECT_EQ(printer.pageLayout().orientation(), QPageLayout::Landscape);
    EXPECT_EQ(printer.pageLayout().fullRectPoints().size(), QSize(842, 595));
    printer.setOutputFileName(QStringLiteral("/没有/printed.pdf"));
    EXPECT_TRUE(errorOf([&] { printPages(prepared, printer, 1, 1); }).contains(u"/没有/printed.pdf"));

    const QTemporaryDir directory;
    const QString name = directory.filePath(QStringLiteral("printed.pdf"));
    printer.setOutputFileName(name);
    printPages(prepared, printer, 1, 1);
    const qint64 size = QFileInfo(name).size();
    for (const qint64 room : { qint64(0), qint64(1000), size - 1 }) {
        const FileSizeLimit fullDisk(room);
        printer.setOutputFileName(name);
        EXPECT_TRUE(errorOf([&] { printPages(prepared, printer, 1, 1); }).contains(u"磁盘已满")) << room;
        EXPECT_EQ(QFileInfo(name).size(), size);
        EXPECT_EQ(QDir(directory.path()).entryList(QDir::Files).size(), 1);
    }
}

/// What a print command does when the automation looks in place of a person.
TEST(Report, IsHandedToTheResponderWithItsTextsFilled)
{
    const QTemporaryDir directory;
    const QString name = directory.filePath(QStringLiteral("清单.frf"));
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("report 1\nband title\nheight = 10\nmemo ReportTitle\nbox = 0 0 90 5\ntext = 发件清单\nmemo Memo2\nbox = 0 5 90 5\n"
               "band master\nheight = 10\nmemo Bill\nbox = 0 0 90 5\ntext = [N]\nband page-footer\nheight = 10\nmemo PrintPage\nbox = 0 0 "
               "90 5\nend\n");
    file.close();
    TCustomClientDataSet rows;
    rows.setData(numberedRows(60));
    TfrDBDataSet source;
    TfrReport frReport;
    frReport.setDataSet(&source);
    frReport.loadFromFile(name);
    EXPECT_EQ(errorOf([&] { frReport.showPreview(); }), QStringLiteral("报表没有数据：数据集没有打开。"));
    source.setDataSet(&rows);
    ReportObject *title = frReport.findObject(u"reporttitle");
    ASSERT_NE(title, nullptr);
    title->setText(ReportObject::literal(QStringLiteral("飞[豹] ")) + title->text());
    frReport.findObject(u"PrintPage")->setText(QStringLiteral("第[PAGE#]页/共[TOTALPAGES]页"));
    EXPECT_EQ(frReport.findObject(u"Memo3"), nullptr);
    QMap<QString, QString> texts;
    setPreviewResponder([&texts](const PreviewRequest &request) {
        request.report.prepareAllPages();
        texts = request.report.namedTexts();
    });
    frReport.prepareReport();
    frReport.showPreview();
    setPreviewResponder({});
    EXPECT_EQ(texts,
        (QMap<QString, QString> { { QStringLiteral("Bill"), QStringLiteral("1") }, { QStringLiteral("Memo2"), QString() },
            { QStringLiteral("PrintPage"), QStringLiteral("第1页/共3页") },
            { QStringLiteral("ReportTitle"), QStringLiteral("飞[豹] 发件清单") } }));

    // A broken file leaves what was loaded.
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write("report 1\nband title\n");
    file.close();
    EXPECT_TRUE(errorOf([&] { frReport.loadFromFile(name); }).startsWith(QStringLiteral("报表文件“%1”第 3 行").arg(name)));
    EXPECT_NE(frReport.findObject(u"ReportTitle"), nullptr);
}

TEST(Report, DrawsBarCodesAndChartsOnlyWithTheirAddIns)
{
    TCustomClientDataSet rows;
    rows.setData(packetOf("CODE:text,V:decimal\nA1,2\nB2,6\nA1,4\n"));
    const QByteArray bands = "band master\nheight = 10\nbarcode\nbox = 0 0 40 10\ntext = [CODE]\nband summary\nheight = 40\n"
                             "chart\nbox = 0 0 80 40\nkind = pie\nlabel = CODE\nvalue = V\n";
    EXPECT_EQ(errorOf([&] { PreparedReport(smallReport(bands), &rows); }),
        QStringLiteral("报表文件“t.frf”第 7 行第 1 列：本程序没有登记条码或图表，无法打印这个对象。"));
    BarCodeObject barCodes;
    ChartObject charts;
    PreparedReport prepared(smallReport(bands), &rows, { &barCodes, &charts });
    EXPECT_EQ(pagesOf(prepared).value(0), QStringLiteral("A1|B2|A1|A1 50.0%|B2 50.0%"));
    // Start, two characters, check and stop: five times three bars and one more, and the quiet ends are no bars.
    const report::Page page = prepared.page(0);
    const auto bars = std::count_if(
        page.begin(), page.end(), [](const report::Primitive &primitive) { return primitive.shape == report::Shape::Rectangle; });
    EXPECT_EQ(bars, 3 * 16 + 2);
    rows.setData(packetOf("CODE:text,V:decimal\n" + std::string(3000, 'x') + ",1\n"));
    EXPECT_TRUE(errorOf([&] {
        PreparedReport(smallReport(bands), &rows, { &barCodes, &charts }).prepareNextPage();
    }).contains(QStringLiteral("不能印成条码")));
}

} // namespace
