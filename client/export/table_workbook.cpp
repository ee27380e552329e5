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

/// A table in a workbook, written row by row.
class TableWorkbook {
public:
    TableWorkbook(const ExportTable &table, const files::SafeFile &file, std::uint32_t sheetRows)
        : m_table(table)
        , m_sheetRows(sheetRows)
        , m_book(file)
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
    }
    void addNotes()
    {
        m_book.addSheet(QStringLiteral("查询条件"));
        m_book.setColumnWidth(0, 173, m_text);
        m_book.setColumnWidth(1, 425, m_text);
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
            made = m_book.addFormat({ .number = number, .bold = bold });
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
        for (std::size_t column = 0; column < m_table.columns.size(); ++column) {
            const ExportColumn &shown = m_table.columns[column];
            m_book.setColumnWidth(int(column), shown.width, m_formats[column].cell);
            m_book.writeText(0, int(column), shown.title.toStdString(), m_title);
        }
        m_book.freezePanes(1, m_table.frozenColumns);
        m_lastDataRow = 0;
        m_row = 1;
    }
    void endRows()
    {
        if (std::exchange(m_rowsOpen, false))
            m_book.setFilter(m_lastDataRow, int(m_table.columns.size()));
    }
    void beginRow()
    {
        if (m_row < m_sheetRows)
            return;
        const bool rows = m_rowsOpen;
        endRows();
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
                return m_book.writeNumber(m_row, int(column), *number, m_formats[column].cell);
        }
        const std::string_view text = m_table.text(column, row, m_buffer);
        if (!text.empty())
            m_book.writeText(m_row, int(column), text, m_formats[column].text);
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
            m_book.writeNumber(m_row, int(column), *number, m_formats[column].footer);
        else if (!footer.text.isEmpty())
            m_book.writeText(m_row, int(column), footer.text.toStdString(), m_formats[column].footerText);
    }

    const ExportTable &m_table;
    const std::uint32_t m_sheetRows;
    files::Workbook m_book;
    lxw_format *m_text = nullptr;
    lxw_format *m_title = nullptr;
    QHash<std::pair<QByteArray, bool>, lxw_format *> m_looks;
    std::vector<ColumnFormats> m_formats;
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
    book.addNotes();
    book.close();
}

} // namespace client
