#include "platform/report/output/html_export.h"

#include "platform/files/cell_text.h"
#include "platform/files/safe_file.h"
#include "platform/report/output/cell_table.h"

#include <utility>

namespace report {

namespace {

QString millimetres(int length) { return QString::number(length / qreal(millimetre), 'f', 2) + QStringLiteral("mm"); }

QString styleRule(int number, const Style &style)
{
    QString rule = QStringLiteral(".s%1{font:%2%3 %4pt \"%5\",\"Noto Sans CJK SC\",sans-serif;color:%6;text-align:%7;")
                       .arg(QString::number(number), style.italic ? QStringLiteral("italic ") : QString(),
                           style.bold ? QStringLiteral("bold") : QStringLiteral("normal"), QString::number(style.points),
                           QString(style.family).remove(u'"').toHtmlEscaped(), style.color.name(),
                           style.alignment & Qt::AlignRight         ? QStringLiteral("right")
                               : style.alignment & Qt::AlignHCenter ? QStringLiteral("center")
                                                                    : QStringLiteral("left"));
    if (style.fill.isValid())
        rule += QStringLiteral("background:") + style.fill.name() + u';';
    if (style.underline)
        rule += QStringLiteral("text-decoration:underline;");
    const std::pair<Side, QStringView> sides[] { { LeftSide, u"left" }, { TopSide, u"top" }, { RightSide, u"right" },
        { BottomSide, u"bottom" } };
    for (const auto &[side, name] : sides) {
        if (style.sides & side)
            rule += QStringLiteral("border-%1:1px solid %2;").arg(name, style.lineColor.name());
    }
    return rule + QStringLiteral("}\n");
}

QString cellTag(const Cell &cell)
{
    // The class t keeps codes as they are when a spreadsheet takes the table over.
    const bool text = cell.primitive->number.isEmpty();
    const QString shown = plainText(*cell.primitive).toHtmlEscaped().replace(u'\n', QStringLiteral("<br>"));
    return QStringLiteral("<td class=\"s%1%2\" colspan=\"%3\">")
               .arg(cell.primitive->style)
               .arg(text ? QStringLiteral(" t") : QString())
               .arg(cell.columns)
        + shown + QStringLiteral("</td>");
}

QString gapTag(int columns) { return columns > 0 ? QStringLiteral("<td colspan=\"%1\"></td>").arg(columns) : QString(); }

QString tableOf(const Page &page, const Resources &resources)
{
    QList<CellRow> rows = cellRows(page, resources);
    const QList<int> edges = arrangeColumns(rows);
    QString table = QStringLiteral("<table>\n<colgroup>");
    for (qsizetype edge = 1; edge < edges.size(); ++edge)
        table += QStringLiteral("<col style=\"width:%1\">").arg(millimetres(edges[edge] - edges[edge - 1]));
    table += QStringLiteral("</colgroup>\n");
    int bottom = rows.isEmpty() ? 0 : rows.first().top;
    for (const CellRow &row : std::as_const(rows)) {
        if (row.top - bottom > millimetre)
            table += QStringLiteral("<tr style=\"height:%1\"></tr>\n").arg(millimetres(row.top - bottom));
        table += QStringLiteral("<tr style=\"height:%1\">").arg(millimetres(row.height));
        int column = 0;
        for (const Cell &cell : row.cells) {
            table += gapTag(cell.column - column) + cellTag(cell);
            column = cell.column + cell.columns;
        }
        table += QStringLiteral("</tr>\n");
        bottom = row.top + row.height;
    }
    return table + QStringLiteral("</table>\n");
}

QString headOf(const PreparedReport &report)
{
    QString head = QStringLiteral("<!DOCTYPE html>\n<html lang=\"zh-CN\"><head><meta charset=\"utf-8\"><title>")
        + report.title().toHtmlEscaped()
        + QStringLiteral(
            "</title>\n<style>\ntable{border-collapse:collapse;table-layout:fixed;margin:0 auto 10mm;page-break-after:always}\n"
            "td{padding:0 .6mm;overflow:hidden}\n.t{")
        + QLatin1StringView(files::textCellStyle) + QStringLiteral("}\n");
    for (std::size_t style = 0; style < report.resources().styles.size(); ++style)
        head += styleRule(int(style), report.resources().styles[style]);
    return head + QStringLiteral("</style></head><body>\n");
}

} // namespace

QString HtmlTableExport::caption() const { return QStringLiteral("网页表格"); }

void HtmlTableExport::write(PreparedReport &report, const QString &fileName, const Progress &progress)
{
    files::SafeFile file(fileName);
    bool begun = false;
    forEachPage(report, progress, [&](const Page &page) {
        // All styles are known once everything is laid out.
        if (!std::exchange(begun, true))
            file.write(headOf(report).toUtf8());
        file.write(tableOf(page, report.resources()).toUtf8());
    });
    file.write("</body></html>\n");
    file.commit();
}

} // namespace report
