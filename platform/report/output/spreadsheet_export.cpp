#include "platform/report/output/spreadsheet_export.h"

#include "platform/files/safe_file.h"
#include "platform/files/workbook.h"
#include "platform/report/output/cell_table.h"

#include <QHash>

#include <cmath>
#include <optional>
#include <vector>

namespace report {

namespace {

constexpr qreal screenDots = 96; ///< to an inch: what a workbook's widths are counted in

/// The exact value that a cell shows, where a spreadsheet keeps it as it is.
std::optional<double> numberOf(const Primitive &primitive, const QString &text)
{
    if (primitive.number.isEmpty() || text != plainText(primitive))
        return std::nullopt;
    const auto number = packet::Decimal::parse(primitive.number.toStdString());
    return number ? files::exactNumber(*number) : std::nullopt;
}

/// The rows of a report in a workbook.
class ReportWorkbook {
public:
    ReportWorkbook(const files::SafeFile &file, const PreparedReport &report, CellLooks looks)
        : m_rows(report.resources())
        , m_resources(report.resources())
        , m_title(report.title())
        , m_looks(looks)
        , m_book(file)
    {
        addSheet();
    }

    void addPage(const Page &page)
    {
        for (const CellRow &row : m_rows.rowsOf(page))
            addRow(row);
    }
    void close() { m_book.close(); }

private:
    struct SheetCell {
        const Primitive *first = nullptr; ///< of the texts that stand side by side in the column
        QString text {};
    };

    void addSheet()
    {
        m_book.addSheet(m_title);
        m_row = 0;
        for (int column = 0; column < m_rows.columnCount(); ++column)
            m_book.setColumnWidth(column, int(std::lround(m_rows.columnWidth(column) * screenDots / (25.4 * millimetre))));
    }

    void addRow(const CellRow &row)
    {
        if (m_row == files::mostSheetRows)
            addSheet();
        auto cells = std::vector<SheetCell>(std::size_t(m_rows.columnCount()));
        for (const Cell &cell : row.cells) {
            SheetCell &sheetCell = cells[std::size_t(cell.column)];
            const QString added = plainText(*cell.primitive);
            sheetCell.text += !sheetCell.text.isEmpty() && !added.isEmpty() ? QString(u' ' + added) : added;
            if (!sheetCell.first)
                sheetCell.first = cell.primitive;
        }
        for (std::size_t column = 0; column < cells.size(); ++column) {
            if (cells[column].first)
                write(int(column), cells[column]);
        }
        ++m_row;
    }

    void write(int column, const SheetCell &cell)
    {
        const auto number = numberOf(*cell.first, cell.text);
        lxw_format *look = format(cell.first->style, number.has_value());
        if (cell.text.isEmpty())
            m_book.writeBlank(m_row, column, look);
        else if (number)
            m_book.writeNumber(m_row, column, *number, look);
        else
            m_book.writeText(m_row, column, cell.text.toStdString(), look);
    }

    lxw_format *format(quint16 style, bool number)
    {
        lxw_format *&format = m_formats[{ style, number }];
        if (!format)
            format = m_book.addFormat(look(m_resources.styles[style], number));
        return format;
    }

    files::CellFormat look(const Style &style, bool number) const
    {
        files::CellFormat look { .number = "@" };
        if (number)
            look.number = style.format.isEmpty() ? QByteArray("General") : style.format.toUtf8();
        if (m_looks & CellLook::Alignment)
            look.alignment = style.alignment;
        if (m_looks & CellLook::FillColor)
            look.fill = style.fill;
        if (m_looks & CellLook::FontColor)
            look.color = style.color;
        if (m_looks & CellLook::FontName)
            look.family = style.family;
        if (m_looks & CellLook::FontSize)
            look.points = style.points;
        if (m_looks & CellLook::FontStyle) {
            look.bold = style.bold;
            look.italic = style.italic;
            look.underline = style.underline;
        }
        return look;
    }

    DataRows m_rows;
    const Resources &m_resources;
    QString m_title;
    CellLooks m_looks;
    files::Workbook m_book;
    std::uint32_t m_row = 0;
    QHash<std::pair<quint16, bool>, lxw_format *> m_formats;
};

} // namespace

QString SpreadsheetExport::caption() const { return QStringLiteral("电子表格"); }

void SpreadsheetExport::write(PreparedReport &report, const QString &fileName, const Progress &progress)
{
    files::SafeFile file(fileName);
    ReportWorkbook book(file, report, m_looks);
    forEachPage(report, progress, [&](const Page &page) { book.addPage(page); });
    book.close();
    file.commit();
}

} // namespace report
