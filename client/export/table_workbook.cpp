#include "client/export/table_workbook.h"

#include <QHash>

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>
#include <vector>

using namespace client;
using namespace platform;

namespace client {

namespace {

constexpr int rowsBetweenReports = 1024;
constexpr char16_t fontFamily[] = u"宋体";
constexpr int fontPoints = 10;
constexpr int halfWidth = 7; ///< pixels of a letter in that font; a Han character takes two
constexpr int timeLetters = 19;
constexpr int cellPadding = 10;
constexpr int filterButton = 18; ///< beside the title
constexpr int mostLetters = 40; ///< for which a column is made wider than on the screen
constexpr int uprightPixels = 720; ///< what A4 is wide between its margins

/// The looks of one column's cells.
struct ColumnFormats {
    lxw_format *cell;
    lxw_format *text; ///< of a value that must go as text
    lxw_format *footer;
    lxw_format *footerText;
};

/// `scale`: most digits after the point.
QByteArray numberFormat(CellKind kind, int scale)
{
    switch (kind) {
    case CellKind::Text:
        return "@";
    case CellKind::Integer:
        return "0";
    case CellKind::Time:
        return "yyyy-mm-dd hh:mm:ss";
    case CellKind::Float:
        return "General";
    case CellKind::Decimal:
        break;
    }
    return "#,##0." + QByteArray(std::max(2, scale), '0');
}

/// Half-widths that the first letters of a UTF-8 text take.
int widthOf(std::string_view text)
{
    int width = 0;
    int letters = 0;
    for (const char byte : text) {
        const auto lead = static_cast<unsigned char>(byte);
        if ((lead & 0xC0) == 0x80)
            continue;
        if (++letters > mostLetters)
            break;
        width += lead >= 0xE0 ? 2 : 1;
    }
    return width;
}

/// The same of a number that is written with thousands and `decimals` digits after the point.
int widthOf(double number, int decimals)
{
    const int digits = std::abs(number) < 10 ? 1 : int(std::log10(std::abs(number))) + 1;
    return (number < 0 ? 1 : 0) + digits + (digits - 1) / 3 + (decimals > 0 ? 1 + decimals : 0);
}

/// A table in a workbook, written row by row.
class TableWorkbook {
public:
    TableWorkbook(const ExportTable &table, const files::SafeFile &file, std::uint32_t sheetRows)
        : m_table(table)
        , m_sheetRows(sheetRows)
        , m_book(file)
        , m_letters(table.columns.size())
    {
        createFormats();
        addTitledSheet();
    }

    void addRow(std::size_t row)
    {
        beginRow();
        const std::uint32_t source = m_table.rows.source(row);
        for (std::size_t column = 0; column < m_table.columns.size(); ++column)
            writeCell(column, row, source);
        m_lastDataRow = m_row++;
    }
    void addFooters()
    {
        endRows();
        for (int row = 0; row < m_table.footerRows; ++row) {
            beginRow();
            for (std::size_t column = 0; column < m_table.columns.size(); ++column)
                writeFooter(column, m_table.columns[column].footers[row]);
            ++m_row;
        }
        finishSheet();
    }
    void addChart(const ExportChart &chart)
    {
        m_book.addSheet(QStringLiteral("图表"));
        m_book.insertChart({ .kind = chart.kind == report::ChartKind::Bars ? files::SheetChart::Kind::Columns
                : chart.kind == report::ChartKind::Lines                   ? files::SheetChart::Kind::Lines
                                                                           : files::SheetChart::Kind::Pie,
            .title = chart.title,
            .labels = chart.labels,
            .values = chart.values,
            .firstRow = 1,
            .lastRow = std::uint32_t(chart.rows) });
    }
    void addNotes()
    {
        m_book.addSheet(QStringLiteral("查询条件"));
        m_book.setColumnWidth(0, 173, m_text);
        m_book.setColumnWidth(1, 425, m_text);
        m_book.setPrinting(QPageLayout::Portrait, 0);
        m_row = 0;
        for (const ExportNote &note : m_table.notes) {
            m_book.writeText(m_row, 0, note.caption.toStdString(), m_title);
            for (const QString &line : note.value.split(u'\n'))
                m_book.writeText(m_row++, 1, line.toStdString(), m_text);
        }
    }
    void close() { m_book.close(); }

private:
    lxw_format *format(const QByteArray &number, bool bold = false)
    {
        lxw_format *&made = m_looks[{ number, bold }];
        if (!made)
            made = m_book.addFormat({ .number = number, .bold = bold, .family = QString::fromUtf16(fontFamily), .points = fontPoints });
        return made;
    }
    void createFormats()
    {
        m_text = format("@");
        m_title = format("@", true);
        lxw_format *general = format("General");
        lxw_format *wholeFooter = format("0", true);
        for (const ExportColumn &column : m_table.columns) {
            const QByteArray number = numberFormat(column.kind, column.scale);
            const bool text = column.kind == CellKind::Text;
            lxw_format *cell = column.field < 0 ? general : text ? m_text : format(number);
            const bool sum = column.kind == CellKind::Decimal || column.kind == CellKind::Float;
            m_formats.push_back({ cell, m_text, sum ? format(number, true) : wholeFooter, m_title });
        }
    }

    void addTitledSheet()
    {
        m_book.addSheet(m_table.title);
        for (std::size_t column = 0; column < m_table.columns.size(); ++column)
            m_book.writeText(0, int(column), m_table.columns[column].title.toStdString(), m_title);
        m_book.freezePanes(1, m_table.frozenColumns);
        m_lastDataRow = 0;
        m_row = 1;
    }
    void endRows()
    {
        if (std::exchange(m_rowsOpen, false))
            m_book.setFilter(m_lastDataRow, int(m_table.columns.size()));
    }
    /// The widths are those of what was written so far.
    void finishSheet()
    {
        int whole = 0;
        for (std::size_t column = 0; column < m_table.columns.size(); ++column) {
            const int letters = m_letters[column] * halfWidth + cellPadding;
            const int title = widthOf(m_table.columns[column].title.toStdString()) * halfWidth + cellPadding + filterButton;
            const int width = std::max({ m_table.columns[column].width, letters, title });
            m_book.setColumnWidth(int(column), width, m_formats[column].cell);
            whole += width;
        }
        m_book.setPrinting(whole > uprightPixels ? QPageLayout::Landscape : QPageLayout::Portrait, 1);
    }
    void beginRow()
    {
        if (m_row < m_sheetRows)
            return;
        const bool rows = m_rowsOpen;
        endRows();
        finishSheet();
        addTitledSheet();
        m_rowsOpen = rows;
    }

    void writeCell(std::size_t column, std::size_t row, std::uint32_t source)
    {
        const ExportColumn &shown = m_table.columns[column];
        if (shown.kind != CellKind::Text) {
            const auto field = std::size_t(shown.field);
            if (m_table.rows.overlay().isNull(field, source))
                return;
            if (const auto number = numberOf(shown.kind, field, source))
                return writeNumber(column, *number, m_formats[column].cell);
        }
        const std::string_view text = m_table.text(column, row, m_buffer);
        if (!text.empty())
            writeText(column, text, m_formats[column].text);
    }
    void writeText(std::size_t column, std::string_view text, lxw_format *format)
    {
        m_letters[column] = std::max(m_letters[column], widthOf(text));
        m_book.writeText(m_row, int(column), text, format);
    }
    void writeNumber(std::size_t column, double number, lxw_format *format)
    {
        const ExportColumn &shown = m_table.columns[column];
        const int width
            = shown.kind == CellKind::Time ? timeLetters : widthOf(number, shown.kind == CellKind::Integer ? 0 : std::max(2, shown.scale));
        m_letters[column] = std::max(m_letters[column], width);
        m_book.writeNumber(m_row, int(column), number, format);
    }
    std::optional<double> numberOf(CellKind kind, std::size_t field, std::uint32_t source) const
    {
        const RowOverlay &rows = m_table.rows.overlay();
        if (kind == CellKind::Time)
            return files::dayNumber(rows.seconds(field, source));
        if (kind == CellKind::Float) {
            const double value = rows.real(field, source);
            return std::isfinite(value) ? std::optional(value) : std::nullopt;
        }
        return files::exactNumber(rows.decimal(field, source));
    }
    void writeFooter(std::size_t column, const ExportFooter &footer)
    {
        const auto value = footer.number ? packet::Decimal::parse(footer.text.toStdString()) : std::nullopt;
        if (const auto number = value ? files::exactNumber(*value) : std::nullopt)
            writeNumber(column, *number, m_formats[column].footer);
        else if (!footer.text.isEmpty())
            writeText(column, footer.text.toStdString(), m_formats[column].footerText);
    }

    const ExportTable &m_table;
    const std::uint32_t m_sheetRows;
    files::Workbook m_book;
    lxw_format *m_text = nullptr;
    lxw_format *m_title = nullptr;
    QHash<std::pair<QByteArray, bool>, lxw_format *> m_looks;
    std::vector<ColumnFormats> m_formats;
    std::vector<int> m_letters; ///< half-widths of each column's longest text
    std::uint32_t m_row = 0;
    bool m_rowsOpen = true; ///< no filter has been set over the rows of the sheet at hand
    std::uint32_t m_lastDataRow = 0; ///< of the sheet; the titles' while it has none
    std::string m_buffer;
};

} // namespace

void writeWorkbook(
    const ExportTable &table, const files::SafeFile &file, const std::function<void(std::int64_t rows)> &progress, std::uint32_t sheetRows)
{
    TableWorkbook book(table, file, sheetRows);
    for (std::size_t row = 0; row < table.rows.rowCount(); ++row) {
        book.addRow(row);
        if ((row + 1) % rowsBetweenReports == 0)
            progress(std::int64_t(row + 1));
    }
    book.addFooters();
    if (table.chart)
        book.addChart(*table.chart);
    book.addNotes();
    book.close();
}

} // namespace client
