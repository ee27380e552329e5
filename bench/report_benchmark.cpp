// Lays out a list over a million rows as far as its first page, beside the same over a thousand; then prints a thousand pages to
// PDF, beside a bare QPdfWriter that draws the same cells.

#include "bench/pairs.h"
#include "packet/builder.h"
#include "platform/dataset/client_data_set.h"
#include "platform/report/definition/report_file.h"
#include "platform/report/output/page_exports.h"

#include <QApplication>
#include <QFile>
#include <QPainter>
#include <QPdfWriter>
#include <QTemporaryDir>

#include <cstdio>

namespace {

constexpr int rounds = 7;
constexpr int columns = 10;
constexpr int rowsOnPage = 45;
constexpr int pages = 1000;

packet::PacketPtr waybills(int count)
{
    std::vector<packet::Builder::Column> schema;
    for (int column = 0; column < columns; ++column)
        schema.push_back({ "C" + std::to_string(column) });
    packet::Builder builder(schema);
    for (int row = 0; row < count; ++row) {
        for (int column = 0; column < columns; ++column)
            builder.addText(
                std::size_t(column), column % 3 == 1 ? "北京市中转部" : std::to_string(200'000'000'000 + row * columns + column));
        builder.endRow();
    }
    return builder.finish();
}

/// Rows of 6 mm in ten framed columns of 19 mm; a page number at the foot.
report::Definition list()
{
    QByteArray text = "report 1\nband master\nheight = 6\n";
    for (int column = 0; column < columns; ++column) {
        const QByteArray number = QByteArray::number(column);
        text += "memo\nbox = " + QByteArray::number(column * 19) + " 0 19 6\nfont = \"Noto Sans CJK SC\" 7\nframe = all\ntext = [C" + number
            + "]\n";
    }
    text += "band page-footer\nheight = 7\nmemo\nbox = 0 1 190 6\ntext = 第[PAGE#]页/共[TOTALPAGES]页\nend\n";
    return report::parseDefinition(text, QStringLiteral("list.frf"));
}

void firstPage(TDataSet &rows)
{
    report::PreparedReport report(list(), &rows);
    report.prepareNextPage();
}

void printBare(TDataSet &rows, const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return;
    QPdfWriter writer(&file);
    writer.setResolution(2540);
    writer.setPageMargins({});
    writer.setPageSize(QPageSize(QPageSize::A4));
    QPainter painter(&writer);
    QFont font(QStringLiteral("Noto Sans CJK SC"));
    font.setPixelSize(247);
    painter.setFont(font);
    painter.setPen(QPen(Qt::black, 10));
    for (int row = 0; row < rows.recordCount(); ++row) {
        if (row > 0 && row % rowsOnPage == 0)
            writer.newPage();
        for (int column = 0; column < columns; ++column) {
            const QRect box(1000 + column * 1900, 1000 + row % rowsOnPage * 600, 1900, 600);
            painter.drawRect(box);
            painter.drawText(box.adjusted(60, 0, -60, 0), Qt::AlignVCenter | Qt::AlignLeft, rows.text(column, row));
        }
        if (row % rowsOnPage == 0)
            painter.drawText(QRect(1000, 28000, 19000, 600), Qt::AlignVCenter, QStringLiteral("第%1页").arg(row / rowsOnPage + 1));
    }
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const bool wasQuiet = machineIsQuiet();
    const QTemporaryDir directory;
    TCustomClientDataSet few;
    TCustomClientDataSet many;
    TCustomClientDataSet printed;
    few.setData(waybills(1000));
    many.setData(waybills(1'000'000));
    printed.setData(waybills(pages * rowsOnPage));

    std::vector<Side> first { { "first page of 1,000 rows", [&] { firstPage(few); } },
        { "first page of 1,000,000 rows", [&] { firstPage(many); } } };
    runInTurn(first, rounds);
    std::vector<Side> whole { { "bare QPdfWriter", [&] { printBare(printed, directory.filePath(QStringLiteral("bare.pdf"))); } },
        { "report to PDF",
            [&] {
                report::PreparedReport report(list(), &printed);
                report::PdfExport().exportReport(report, directory.filePath(QStringLiteral("report.pdf")));
                if (report.pageCount() != pages)
                    std::printf("%d pages instead of %d\n", report.pageCount(), pages);
            } },
        { "report laid out", [&] { report::PreparedReport(list(), &printed).prepareAllPages(); } } };
    runInTurn(whole, rounds);
    for (const Side &side : first)
        std::printf("%s: median %.1f ms\n", side.name.c_str(), median(side.milliseconds));
    printRatio(first[1], first[0], 3);
    for (const Side &side : whole)
        std::printf("%s: median %.0f ms for %d pages\n", side.name.c_str(), median(side.milliseconds), pages);
    printRatio(whole[1], whole[0], 1.1);
    if (!wasQuiet || !machineIsQuiet())
        std::printf("machine busy: these ratios are no verdict\n");
    return 0;
}
