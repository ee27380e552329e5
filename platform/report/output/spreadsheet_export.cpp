#include "platform/report/output/cell_table.h"
#include "platform/report/output/data_exports.h"
#include "platform/report/output/file_set.h"
#include "platform/toolkit/exception.h"

#include <QDir>
#include <QFile>
#include <QHash>

#include <memory>

#include <xlsxwriter.h>

using namespace report;

namespace {

constexpr lxw_row_t mostRows = LXW_ROW_MAX;

/// More digits than this a spreadsheet would change.
constexpr int mostDigits = 15;

bool fitsDouble(const QString &number)
{
    return std::count_if(number.begin(), number.end(), [](QChar character) { return character.isDigit(); }) <= mostDigits;
}

/// A workbook that is written to a file row by row.
class Workbook {
public:
    Workbook(const QString &path, const DataRows &rows, const Resources &resources, CellLooks looks)
        : m_rows(rows)
        , m_resources(resources)
        , m_looks(looks)
    {
        QByteArray directory = QDir::tempPath().toUtf8();
        lxw_workbook_options options {};
        options.constant_memory = LXW_TRUE;
        options.tmpdir = directory.data();
        m_book = workbook_new_opt(path.toUtf8().constData(), &options);
        if (m_book == nullptr)
            throw Exception(QStringLiteral("没有足够的内存写电子表格。"));
        addSheet();
    }
    Workbook(const Workbook &) = delete;
    ~Workbook()
    {
        if (m_book != nullptr)
            lxw_workbook_free(m_book);
    }

    void addRow(const CellRow &row)
    {
        if (m_row == mostRows)
            addSheet();
        QHash<int, QString> texts;
        QHash<int, const Primitive *> firsts;
        for (const Cell &cell : row.cells) {
            QString &text = texts[cell.column];
            const QString added = plainText(*cell.primitive);
            text += !text.isEmpty() && !added.isEmpty() ? QString(u' ' + added) : added;
            const Primitive *&first = firsts[cell.column];
            first = first == nullptr ? cell.primitive : first;
        }
        for (int column = 0; column < m_rows.columnCount(); ++column) {
            if (const Primitive *const first = firsts.value(column))
                write(lxw_col_t(column), *first, texts.value(column));
        }
        ++m_row;
    }

    void close()
    {
        const lxw_error error = workbook_close(std::exchange(m_book, nullptr));
        if (error != LXW_NO_ERROR)
            throw Exception(QStringLiteral("电子表格没有写完：") + QString::fromUtf8(lxw_strerror(error)));
    }

private:
    void addSheet()
    {
        m_sheet = workbook_add_worksheet(m_book, nullptr);
        m_row = 0;
        if (m_sheet == nullptr)
            throw Exception(QStringLiteral("电子表格不能再加工作表。"));
        // A width of one is a digit of the standard font, two millimetres wide.
        for (int column = 0; column < m_rows.columnCount(); ++column)
            worksheet_set_column(m_sheet, lxw_col_t(column), lxw_col_t(column), m_rows.columnWidth(column) / 200.0, nullptr);
        worksheet_ignore_errors(m_sheet, LXW_IGNORE_NUMBER_STORED_AS_TEXT, "A1:XFD1048576");
    }

    void write(lxw_col_t column, const Primitive &primitive, const QString &text)
    {
        const bool number = !primitive.number.isEmpty() && fitsDouble(primitive.number) && text == plainText(primitive);
        lxw_format *const look = format(primitive.style, number);
        if (text.isEmpty())
            worksheet_write_blank(m_sheet, m_row, column, look);
        else if (number)
            worksheet_write_number(m_sheet, m_row, column, primitive.number.toDouble(), look);
        else
            worksheet_write_string(m_sheet, m_row, column, text.toUtf8().constData(), look);
    }

    lxw_format *format(quint16 style, bool number)
    {
        lxw_format *&format = m_formats[{ style, number }];
        if (format == nullptr)
            format = newFormat(m_resources.styles[style], number);
        return format;
    }

    lxw_format *newFormat(const Style &style, bool number)
    {
        lxw_format *const format = workbook_add_format(m_book);
        const QByteArray numberFormat = !number ? QByteArray("@") : style.format.isEmpty() ? QByteArray("General") : style.format.toUtf8();
        format_set_num_format(format, numberFormat.constData());
        if (m_looks & CellLook::Alignment) {
            format_set_align(format,
                quint8(style.alignment & Qt::AlignRight      ? LXW_ALIGN_RIGHT
                        : style.alignment & Qt::AlignHCenter ? LXW_ALIGN_CENTER
                                                             : LXW_ALIGN_LEFT));
            format_set_align(format, LXW_ALIGN_VERTICAL_CENTER);
        }
        if (m_looks & CellLook::FillColor && style.fill.isValid())
            format_set_bg_color(format, style.fill.rgb() & 0xffffff);
        if (m_looks & CellLook::FontColor)
            format_set_font_color(format, style.color.rgb() & 0xffffff);
        if (m_looks & CellLook::FontName)
            format_set_font_name(format, style.family.toUtf8().constData());
        if (m_looks & CellLook::FontSize)
            format_set_font_size(format, style.points);
        if (m_looks & CellLook::FontStyle && style.bold)
            format_set_bold(format);
        if (m_looks & CellLook::FontStyle && style.italic)
            format_set_italic(format);
        if (m_looks & CellLook::FontStyle && style.underline)
            format_set_underline(format, LXW_UNDERLINE_SINGLE);
        return format;
    }

    const DataRows &m_rows;
    const Resources &m_resources;
    CellLooks m_looks;
    lxw_workbook *m_book = nullptr;
    lxw_worksheet *m_sheet = nullptr;
    lxw_row_t m_row = 0;
    QHash<std::pair<quint16, bool>, lxw_format *> m_formats;
};

} // namespace

QString SpreadsheetExport::caption() const { return QStringLiteral("电子表格"); }

void SpreadsheetExport::exportReport(PreparedReport &report, const QString &fileName, const Progress &progress)
{
    FileSet files;
    const QString path = files.add(fileName);
    // Tried first, since the library tells why only at the end.
    if (QFile file(path); !file.open(QIODevice::WriteOnly))
        throw Exception(QStringLiteral("文件“%1”不能写入：").arg(fileName) + file.errorString());
    DataRows rows(report.resources());
    Workbook book(path, rows, report.resources(), m_looks);
    forEachPage(report, progress, [&](const Page &page) {
        for (const CellRow &row : rows.rowsOf(page))
            book.addRow(row);
    });
    book.close();
    files.commit();
}
