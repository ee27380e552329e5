#include "platform/report/output/printing.h"

#include "platform/files/safe_file.h"
#include "platform/report/layout/prepared_report.h"
#include "platform/report/output/page_painter.h"
#include "platform/toolkit/long_work.h"
#include "platform/toolkit/user_settings.h"

#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>

#include <algorithm>

using namespace platform;

namespace report {

void setReportPaper(QPrinter &printer, const PreparedReport &report)
{
    const QSize paper = report.paper();
    const bool landscape = paper.width() > paper.height();
    const QSizeF upright = QSizeF(landscape ? paper.transposed() : paper) / millimetre;
    printer.setPageSize(QPageSize(upright, QPageSize::Millimeter));
    printer.setPageOrientation(landscape ? QPageLayout::Landscape : QPageLayout::Portrait);
    printer.setFullPage(true);
}

namespace {

/// False when `goesOn` broke it off.
bool paintPages(PreparedReport &report, QPrinter &printer, int from, int to, const std::function<bool(int)> &goesOn)
{
    QPainter painter;
    if (!painter.begin(&printer))
        throw Exception(QStringLiteral("打印机“%1”不能使用，请检查打印机。").arg(printer.printerName()));
    const qreal scale = printer.resolution() / (25.4 * millimetre);
    PagePainter pages(report.resources());
    for (int page = from; page <= to; ++page) {
        if (page > from && !printer.newPage())
            throw Exception(QStringLiteral("打印机“%1”停止了打印。").arg(printer.printerName()));
        painter.resetTransform();
        painter.scale(scale, scale);
        pages.paint(painter, report.page(page - 1));
        if (goesOn && !goesOn(page - from + 1)) {
            printer.abort();
            return false;
        }
    }
    return true;
}

/// A printer that writes a file does not say when the disk is full.
bool isWhole(QFileDevice &file)
{
    constexpr QByteArrayView pdfEnd = "%%EOF\n";
    return file.seek(file.size() - pdfEnd.size()) && file.read(pdfEnd.size()) == pdfEnd;
}

} // namespace

void printPages(PreparedReport &report, QPrinter &printer, int from, int to, const std::function<bool(int)> &goesOn)
{
    const QString fileName = printer.outputFileName();
    if (fileName.isEmpty()) {
        paintPages(report, printer, from, to, goesOn);
        return;
    }
    files::SafeFile file(fileName);
    printer.setOutputFileName(file.path());
    if (!paintPages(report, printer, from, to, goesOn))
        return;
    if (!isWhole(file.device()))
        file.fail(QStringLiteral("磁盘已满或出了故障"));
    file.commit();
}

bool printReport(PreparedReport &report, QWidget *parent)
{
    QPrinter printer(QPrinter::HighResolution);
    setReportPaper(printer, report);
    printer.setDocName(report.title());
    const QString key = printerSetting + u'/' + report.title();
    if (const QString kept = userSetting(key, userSetting(printerSetting)).toString(); QPrinterInfo::availablePrinterNames().contains(kept))
        printer.setPrinterName(kept);
    QPrintDialog dialog(&printer, parent);
    dialog.setWindowTitle(QStringLiteral("打印"));
    dialog.setOptions(QAbstractPrintDialog::PrintToFile | QAbstractPrintDialog::PrintPageRange | QAbstractPrintDialog::PrintCollateCopies);
    if (dialog.exec() != QDialog::Accepted)
        return false;
    if (printer.outputFormat() == QPrinter::NativeFormat)
        keepUserSetting(key, printer.printerName());
    setReportPaper(printer, report);
    InterfaceWork work(QStringLiteral("正在打印…"), QStringLiteral("页"));
    if (!report.prepareAllPages([&work](int pages, int, int) { return work.report(0, pages); }))
        return true;
    const bool range = dialog.printRange() == QAbstractPrintDialog::PageRange;
    const int last = report.pageCount();
    const int from = range ? std::clamp(printer.fromPage(), 1, last) : 1;
    const int to = range ? std::clamp(printer.toPage(), 1, last) : last;
    printPages(report, printer, from, to, [&work, pages = to - from + 1](int done) { return work.report(done, pages); });
    return true;
}

} // namespace report
