#include "platform/report/output/text_exports.h"

#include "platform/files/cell_text.h"
#include "platform/files/safe_file.h"
#include "platform/report/output/cell_table.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>
#include <vector>

namespace report {

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

/// The texts of a row by their columns; several in one column stand side by side.
void appendCsvLine(files::TextBuffer &out, const CellRow &row, int columns, char delimiter)
{
    auto texts = std::vector<std::string>(std::size_t(columns));
    for (const Cell &cell : row.cells) {
        std::string &text = texts[std::size_t(cell.column)];
        // A number is written as it is, without the marks between thousands.
        const bool number = text.empty() && !cell.primitive->number.isEmpty() && !cell.primitive->text.isEmpty();
        if (!text.empty() && !cell.primitive->text.isEmpty())
            text += ' ';
        text += (number ? cell.primitive->number : plainText(*cell.primitive)).toStdString();
    }
    const files::SeparatedCells cells(delimiter);
    for (std::size_t column = 0; column < texts.size(); ++column) {
        if (column > 0)
            out += delimiter;
        cells.append(out, texts[column]);
    }
    out += "\r\n";
}

} // namespace

QString TextExport::caption() const { return QStringLiteral("文本文件"); }

void TextExport::write(PreparedReport &report, const QString &fileName, const Progress &progress)
{
    files::SafeFile file(fileName);
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
                file.write(QByteArray(line.toUtf8() + "\r\n"));
            bottom = row.top + row.height;
        }
    });
    file.commit();
}

QString CsvExport::caption() const { return QStringLiteral("CSV 数据"); }

void CsvExport::write(PreparedReport &report, const QString &fileName, const Progress &progress)
{
    files::SafeFile file(fileName);
    file.write(byteOrderMark);
    const QSize tolerance(std::max(1, int(nearby.width() / m_scaleX)), std::max(1, int(nearby.height() / m_scaleY)));
    DataRows rows(report.resources(), tolerance);
    files::TextBuffer lines;
    forEachPage(report, progress, [&](const Page &page) {
        lines.clear();
        for (const CellRow &row : rows.rowsOf(page))
            appendCsvLine(lines, row, rows.columnCount(), m_delimiter);
        file.write(lines.view());
    });
    file.commit();
}

} // namespace report
