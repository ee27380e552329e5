#include "client/export/workbook.h"

#include "client/export/export_file.h"
#include "client/export/sheet_values.h"

#include <QDir>
#include <QHash>
#include <QStorageInfo>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>

#include <xlsxwriter.h>

namespace {

constexpr int rowsBetweenReports = 1024;
constexpr int widestColumn = 1790; ///< pixels

/// The looks of one column's cells.
struct ColumnFormats {
    lxw_format *cell;
    lxw_format *text; ///< of a value that must go as text
    lxw_format *footer;
    lxw_format *footerText;
};

struct Free {
    void operator()(lxw_workbook *book) const { lxw_workbook_free(book); }
};

/// A workbook that is written row by row; only the current row is in memory.
class Workbook {
public:
    Workbook(const ExportTable &table, const ExportFile &file, std::uint32_t sheetRows)
        : m_table(table)
        , m_file(file)
        , m_sheetRows(sheetRows)
    {
        QByteArray directory = QDir::tempPath().toUtf8();
        lxw_workbook_options options {};
        options.constant_memory = LXW_TRUE;
        options.tmpdir = directory.data();
        m_book.reset(workbook_new_opt(file.path().toUtf8().constData(), &options));
        if (!m_book)
            file.fail(QStringLiteral("内存不足"));
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
        m_sheet = addSheet(QStringLiteral("查询条件"));
        worksheet_set_column(m_sheet, 0, 0, 24, m_text);
        worksheet_set_column(m_sheet, 1, 1, 60, m_text);
        m_row = 0;
        for (const ExportNote &note : m_table.notes) {
            writeText(0, note.caption.toStdString(), m_title);
            for (const QString &line : note.value.split(u'\n')) {
                writeText(1, line.toStdString(), m_text);
                ++m_row;
            }
        }
    }
    void close()
    {
        checkDisk();
        if (workbook_close(m_book.release()) != LXW_NO_ERROR)
            m_file.fail(QStringLiteral("磁盘已满或出了故障"));
    }
    /// The library does not say that its temporary files were cut by a full disk.
    void checkDisk()
    {
        qint64 needed = 0;
        for (const lxw_worksheet *sheet : m_sheets) {
            if (std::fflush(sheet->optimize_tmpfile) != 0 || std::ferror(sheet->optimize_tmpfile))
                failForTemporaries();
            needed = std::max(needed, qint64(std::ftell(sheet->optimize_tmpfile)));
        }
        const QStorageInfo storage(QDir::tempPath());
        if (storage.isValid() && storage.bytesAvailable() < needed)
            failForTemporaries();
    }

private:
    [[noreturn]] void failForTemporaries() const
    {
        m_file.fail(QStringLiteral("临时目录“%1”空间不足").arg(QDir::toNativeSeparators(QDir::tempPath())));
    }

    /// One object a look: for another one like it, the library would search at every cell.
    lxw_format *format(const QByteArray &number, bool bold = false)
    {
        lxw_format *&made = m_looks[{ number, bold }];
        if (made)
            return made;
        made = workbook_add_format(m_book.get());
        format_set_num_format(made, number.constData());
        if (bold)
            format_set_bold(made);
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

    lxw_worksheet *addSheet(const QString &title)
    {
        int number = 1;
        while (workbook_validate_sheet_name(m_book.get(), sheetName(title, number).constData()) != LXW_NO_ERROR && number < 10'000)
            ++number;
        lxw_worksheet *sheet = workbook_add_worksheet(m_book.get(), sheetName(title, number).constData());
        if (!sheet || !sheet->optimize_tmpfile)
            failForTemporaries();
        m_sheets.push_back(sheet);
        worksheet_ignore_errors(sheet, LXW_IGNORE_NUMBER_STORED_AS_TEXT, "A1:XFD1048576");
        return sheet;
    }
    void addTitledSheet()
    {
        m_sheet = addSheet(m_table.title);
        m_row = 0;
        for (std::size_t column = 0; column < m_table.columns.size(); ++column) {
            const ExportColumn &shown = m_table.columns[column];
            const auto place = lxw_col_t(column);
            check(worksheet_set_column_pixels(
                m_sheet, place, place, std::uint32_t(std::min(shown.width, widestColumn)), m_formats[column].cell));
            writeText(place, shown.title.toStdString(), m_title);
        }
        worksheet_freeze_panes(m_sheet, 1, lxw_col_t(m_table.frozenColumns));
        m_lastDataRow = 0;
        m_row = 1;
    }
    /// The filter over the rows of the sheet at hand: to be set before anything below them.
    void endRows()
    {
        if (!std::exchange(m_rowsOpen, false))
            return;
        check(worksheet_autofilter(m_sheet, 0, 0, m_lastDataRow, lxw_col_t(m_table.columns.size() - 1)));
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
    void check(lxw_error error) const
    {
        if (error != LXW_NO_ERROR)
            m_file.fail(QStringLiteral("表格写不进电子表格（%1）").arg(QString::fromUtf8(lxw_strerror(error))));
    }

    void writeCell(std::size_t column, std::size_t row, std::uint32_t source)
    {
        const ExportColumn &shown = m_table.columns[column];
        const auto place = lxw_col_t(column);
        if (shown.kind != CellKind::Text) {
            const auto field = std::size_t(shown.field);
            if (m_table.rows.overlay().isNull(field, source))
                return;
            if (const auto number = numberOf(shown.kind, field, source)) {
                check(worksheet_write_number(m_sheet, m_row, place, *number, m_formats[column].cell));
                return;
            }
        }
        const std::string_view text = m_table.text(column, row, m_buffer);
        if (!text.empty())
            writeText(place, text, m_formats[column].text);
    }
    std::optional<double> numberOf(CellKind kind, std::size_t field, std::uint32_t source) const
    {
        const RowOverlay &rows = m_table.rows.overlay();
        if (kind == CellKind::Time)
            return dayNumber(rows.seconds(field, source));
        if (kind == CellKind::Float) {
            const double value = rows.real(field, source);
            return std::isfinite(value) ? std::optional(value) : std::nullopt;
        }
        return exactNumber(rows.decimal(field, source));
    }
    void writeFooter(std::size_t column, const ExportFooter &footer)
    {
        const auto value = footer.number ? packet::Decimal::parse(footer.text.toStdString()) : std::nullopt;
        const auto number = value ? exactNumber(*value) : std::nullopt;
        if (number)
            check(worksheet_write_number(m_sheet, m_row, lxw_col_t(column), *number, m_formats[column].footer));
        else if (!footer.text.isEmpty())
            writeText(lxw_col_t(column), footer.text.toStdString(), m_formats[column].footerText);
    }
    void writeText(lxw_col_t column, std::string_view text, lxw_format *format)
    {
        m_terminated = text;
        shortenForCell(m_terminated);
        check(worksheet_write_string(m_sheet, m_row, column, m_terminated.c_str(), format));
    }

    const ExportTable &m_table;
    const ExportFile &m_file;
    const lxw_row_t m_sheetRows;
    std::unique_ptr<lxw_workbook, Free> m_book;
    lxw_worksheet *m_sheet = nullptr;
    std::vector<lxw_worksheet *> m_sheets;
    lxw_format *m_text = nullptr;
    lxw_format *m_title = nullptr;
    QHash<std::pair<QByteArray, bool>, lxw_format *> m_looks;
    std::vector<ColumnFormats> m_formats;
    lxw_row_t m_row = 0;
    bool m_rowsOpen = true; ///< no filter has been set over the rows of the sheet at hand
    lxw_row_t m_lastDataRow = 0; ///< of the sheet; the titles' while it has none
    std::string m_buffer;
    std::string m_terminated;
};

} // namespace

void writeWorkbook(
    const ExportTable &table, const ExportFile &file, const std::function<void(std::int64_t rows)> &progress, std::uint32_t sheetRows)
{
    Workbook book(table, file, sheetRows);
    for (std::size_t row = 0; row < table.rows.rowCount(); ++row) {
        book.addRow(row);
        if ((row + 1) % rowsBetweenReports == 0)
            progress(std::int64_t(row + 1));
    }
    book.addFooters();
    book.addNotes();
    book.close();
}
