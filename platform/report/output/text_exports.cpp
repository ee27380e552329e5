#include "platform/report/layout/text_face.h"
#include "platform/report/output/cell_table.h"
#include "platform/report/output/data_exports.h"

#include <QIODevice>

#include <cmath>

using namespace report;

namespace {

constexpr char byteOrderMark[] = "\xEF\xBB\xBF";
/// The room of one narrow character and of one line.
constexpr qreal characterWidth = 160;
constexpr qreal lineRoom = 600;
constexpr int mostBlankLines = 3;

/// Characters that take two places in a fixed font.
bool isWide(QChar character)
{
    const char16_t code = character.unicode();
    return (code >= 0x1100 && code < 0x1160) || (code >= 0x2E80 && code < 0xD7A4) || (code >= 0xF900 && code < 0xFB00)
        || (code >= 0xFE30 && code < 0xFE70) || (code >= 0xFF00 && code < 0xFF61) || (code >= 0xFFE0 && code < 0xFFE7);
}

int placesOf(QStringView text)
{
    int places = 0;
    for (const QChar character : text)
        places += isWide(character) ? 2 : 1;
    return places;
}

/// The lines of one row of cells; a text never covers another, it pushes what follows to the right.
QStringList linesOf(const CellRow &row, const Resources &resources, qreal scale)
{
    QStringList lines;
    for (const Cell &cell : row.cells) {
        const QRect &box = cell.primitive->box;
        const QStringList texts = QString(cell.primitive->text).replace(QChar(QChar::LineSeparator), u'\n').split(u'\n');
        for (qsizetype line = 0; line < texts.size(); ++line) {
            if (line == lines.size())
                lines.append(QString());
            if (texts[line].isEmpty())
                continue;
            const int room = int(std::lround(box.width() * scale / characterWidth));
            const int spare = std::max(0, room - placesOf(texts[line]));
            const Qt::Alignment alignment = resources.styles[cell.primitive->style].alignment;
            const int indent = alignment & Qt::AlignRight ? spare : alignment & Qt::AlignHCenter ? spare / 2 : 0;
            const int wanted = int(std::lround(box.x() * scale / characterWidth)) + indent;
            const int taken = placesOf(lines[line]);
            lines[line] += QString(std::max(wanted - taken, taken > 0 ? 1 : 0), u' ') + texts[line];
        }
    }
    return lines;
}

QString csvCell(const QString &text, bool number, QChar delimiter)
{
    static const QString runs = QStringLiteral("=+-@\t\r");
    QString cell = text;
    if (!number && !cell.isEmpty() && runs.contains(cell[0]))
        cell.prepend(u'\t');
    const bool quotes
        = cell.contains(delimiter) || cell.contains(u'"') || cell.contains(u'\n') || cell.contains(u'\r') || cell.startsWith(u'\t');
    return quotes ? QString(u'"' + cell.replace(u'"', QStringLiteral("\"\"")) + u'"') : cell;
}

/// The texts of a row by their columns; several in one column stand side by side.
QString csvLine(const CellRow &row, int columns, QChar delimiter)
{
    QStringList texts(columns);
    QList<bool> numbers(columns, false);
    for (const Cell &cell : row.cells) {
        QString &text = texts[cell.column];
        // A number is written as it is, without the marks between thousands.
        const bool number = text.isEmpty() && !cell.primitive->number.isEmpty() && !cell.primitive->text.isEmpty();
        if (!text.isEmpty() && !cell.primitive->text.isEmpty())
            text += u' ';
        text += number ? cell.primitive->number : plainText(*cell.primitive);
        numbers[cell.column] = number;
    }
    for (int column = 0; column < columns; ++column)
        texts[column] = csvCell(texts[column], numbers[column], delimiter);
    return texts.join(delimiter);
}

} // namespace

QString TextExport::caption() const { return QStringLiteral("文本文件"); }

void TextExport::exportReport(PreparedReport &report, const QString &fileName, const Progress &progress)
{
    writeFile(fileName, [&](QIODevice &file) {
        file.write(byteOrderMark);
        bool first = true;
        forEachPage(report, progress, [&](const Page &page) {
            if (!first)
                file.write("\f");
            first = false;
            int bottom = -1;
            for (const CellRow &row : cellRows(page, report.resources())) {
                const int blank = bottom < 0 ? 0 : int((row.top - bottom) * m_scaleY / lineRoom);
                file.write(QByteArray("\r\n").repeated(std::clamp(blank, 0, mostBlankLines)));
                for (const QString &line : linesOf(row, report.resources(), m_scaleX))
                    file.write(line.toUtf8() + "\r\n");
                bottom = row.top + row.height;
            }
        });
    });
}

QString CsvExport::caption() const { return QStringLiteral("CSV 数据"); }

void CsvExport::exportReport(PreparedReport &report, const QString &fileName, const Progress &progress)
{
    writeFile(fileName, [&](QIODevice &file) {
        file.write(byteOrderMark);
        const QSize tolerance(std::max(1, int(nearby.width() / m_scaleX)), std::max(1, int(nearby.height() / m_scaleY)));
        DataRows rows(report.resources(), tolerance);
        forEachPage(report, progress, [&](const Page &page) {
            for (const CellRow &row : rows.rowsOf(page))
                file.write(csvLine(row, rows.columnCount(), m_delimiter).toUtf8() + "\r\n");
        });
    });
}
