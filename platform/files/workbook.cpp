#include "platform/files/workbook.h"

#include "platform/files/safe_file.h"

#include <QDir>
#include <QStorageInfo>

#include <algorithm>
#include <cstdio>

#include <xlsxwriter.h>

namespace files {

namespace {

constexpr qsizetype longestSheetName = 31;
constexpr qsizetype longestCell = 32'767; ///< characters
constexpr int widestColumn = 1790; ///< pixels
/// What the temporary files hold besides the rows.
constexpr qint64 roomForTheRest = 128 * 1024;

/// The name of a sheet, the `number`th of that title: without the letters that a name cannot hold, and not longer than it can be.
QByteArray sheetName(const QString &title, int number)
{
    QString name = title;
    for (QChar &letter : name) {
        if (QStringView(u"[]:*?/\\").contains(letter) || letter < u' ')
            letter = u' ';
    }
    const QString suffix = number > 1 ? QStringLiteral(" (%1)").arg(number) : QString();
    name.truncate(longestSheetName - suffix.size());
    if (!name.isEmpty() && name.back().isHighSurrogate())
        name.chop(1);
    while (name.startsWith(u'\'') || name.startsWith(u' '))
        name.remove(0, 1);
    while (name.endsWith(u'\'') || name.endsWith(u' '))
        name.chop(1);
    return ((name.isEmpty() ? QStringLiteral("数据") : name) + suffix).toUtf8();
}

/// Cuts a text that a cell cannot hold, and marks the cut.
void shortenForCell(std::string &text)
{
    if (text.size() <= std::size_t(longestCell))
        return;
    const QString whole = QString::fromStdString(text);
    if (whole.size() > longestCell)
        text = QString(whole.left(longestCell - 1) + u'…').toStdString();
}

lxw_color_t rgbOf(const QColor &color) { return color.rgb() & 0xffffff; }

} // namespace

void Workbook::Free::operator()(lxw_workbook *book) const { lxw_workbook_free(book); }

Workbook::Workbook(const SafeFile &file)
    : m_file(file)
{
    QByteArray directory = QDir::tempPath().toUtf8();
    lxw_workbook_options options {};
    options.constant_memory = LXW_TRUE;
    options.tmpdir = directory.data();
    m_book.reset(workbook_new_opt(file.path().toUtf8().constData(), &options));
    if (!m_book)
        file.fail(QStringLiteral("内存不足"));
}

Workbook::~Workbook() = default;

lxw_format *Workbook::addFormat(const CellFormat &look)
{
    lxw_format *format = workbook_add_format(m_book.get());
    if (!format)
        m_file.fail(QStringLiteral("内存不足"));
    format_set_num_format(format, look.number.constData());
    if (look.bold)
        format_set_bold(format);
    if (look.italic)
        format_set_italic(format);
    if (look.underline)
        format_set_underline(format, LXW_UNDERLINE_SINGLE);
    if (look.alignment) {
        format_set_align(format,
            std::uint8_t(*look.alignment & Qt::AlignRight ? LXW_ALIGN_RIGHT
                    : *look.alignment & Qt::AlignHCenter  ? LXW_ALIGN_CENTER
                                                          : LXW_ALIGN_LEFT));
        format_set_align(format, LXW_ALIGN_VERTICAL_CENTER);
    }
    if (look.color.isValid())
        format_set_font_color(format, rgbOf(look.color));
    if (look.fill.isValid())
        format_set_bg_color(format, rgbOf(look.fill));
    if (!look.family.isEmpty())
        format_set_font_name(format, look.family.toUtf8().constData());
    if (look.points > 0)
        format_set_font_size(format, look.points);
    return format;
}

void Workbook::addSheet(const QString &title)
{
    int number = 1;
    while (workbook_validate_sheet_name(m_book.get(), sheetName(title, number).constData()) != LXW_NO_ERROR && number < 10'000)
        ++number;
    m_sheet = workbook_add_worksheet(m_book.get(), sheetName(title, number).constData());
    if (!m_sheet || !m_sheet->optimize_tmpfile)
        failForTemporaries();
    m_sheets.push_back(m_sheet);
    check(worksheet_ignore_errors(m_sheet, LXW_IGNORE_NUMBER_STORED_AS_TEXT, "A1:XFD1048576"));
}

void Workbook::setColumnWidth(int column, int pixels, lxw_format *format)
{
    const auto place = lxw_col_t(column);
    check(worksheet_set_column_pixels(m_sheet, place, place, std::uint32_t(std::clamp(pixels, 0, widestColumn)), format));
}

void Workbook::freezePanes(std::uint32_t rows, int columns) { worksheet_freeze_panes(m_sheet, rows, lxw_col_t(columns)); }

void Workbook::setPrinting(QPageLayout::Orientation orientation, int titleRows)
{
    constexpr std::uint8_t a4 = 9;
    worksheet_set_paper(m_sheet, a4);
    if (orientation == QPageLayout::Landscape)
        worksheet_set_landscape(m_sheet);
    constexpr double narrow = 0.4; // inches: what is left belongs to the columns
    constexpr double foot = 0.6;
    worksheet_set_margins(m_sheet, narrow, narrow, narrow, foot);
    worksheet_gridlines(m_sheet, LXW_SHOW_ALL_GRIDLINES);
    worksheet_fit_to_pages(m_sheet, 1, 0);
    if (titleRows > 0)
        check(worksheet_repeat_rows(m_sheet, 0, lxw_row_t(titleRows - 1)));
    check(worksheet_set_footer(m_sheet, "&L&A&R第 &P 页 / 共 &N 页"));
}

void Workbook::setFilter(std::uint32_t lastRow, int columns)
{
    check(worksheet_autofilter(m_sheet, 0, 0, lastRow, lxw_col_t(columns - 1)));
}

void Workbook::writeText(std::uint32_t row, int column, std::string_view text, lxw_format *format)
{
    m_text = text;
    shortenForCell(m_text);
    check(worksheet_write_string(m_sheet, row, lxw_col_t(column), m_text.c_str(), format));
}

void Workbook::writeNumber(std::uint32_t row, int column, double number, lxw_format *format)
{
    check(worksheet_write_number(m_sheet, row, lxw_col_t(column), number, format));
}

void Workbook::writeBlank(std::uint32_t row, int column, lxw_format *format)
{
    check(worksheet_write_blank(m_sheet, row, lxw_col_t(column), format));
}

void Workbook::insertChart(const SheetChart &chart)
{
    constexpr double scale = 1.8;
    constexpr std::uint8_t types[] = { LXW_CHART_COLUMN, LXW_CHART_LINE, LXW_CHART_PIE };
    const char *data = m_sheets.front()->name;
    lxw_chart *made = workbook_add_chart(m_book.get(), types[int(chart.kind)]);
    if (!made)
        m_file.fail(QStringLiteral("内存不足"));
    for (const int column : chart.values) {
        lxw_chart_series *series = chart_add_series(made, nullptr, nullptr);
        if (!series)
            m_file.fail(QStringLiteral("内存不足"));
        const auto place = lxw_col_t(column);
        chart_series_set_values(series, data, chart.firstRow, place, chart.lastRow, place);
        chart_series_set_name_range(series, data, 0, place);
        if (chart.labels >= 0)
            chart_series_set_categories(series, data, chart.firstRow, lxw_col_t(chart.labels), chart.lastRow, lxw_col_t(chart.labels));
    }
    chart_title_set_name(made, chart.title.toUtf8().constData());
    lxw_chart_options options {};
    options.x_scale = scale;
    options.y_scale = scale;
    check(worksheet_insert_chart_opt(m_sheet, 0, 0, made, &options));
}

void Workbook::close()
{
    checkDisk();
    if (workbook_close(m_book.release()) != LXW_NO_ERROR)
        m_file.fail(QStringLiteral("磁盘已满或出了故障"));
}

/// The library does not say that its temporary files were cut by a full disk.
void Workbook::checkDisk() const
{
    qint64 needed = 0;
    for (const lxw_worksheet *sheet : m_sheets) {
        if (std::fflush(sheet->optimize_tmpfile) != 0 || std::ferror(sheet->optimize_tmpfile))
            failForTemporaries();
        needed = std::max(needed, qint64(std::ftell(sheet->optimize_tmpfile)));
    }
    // It copies the rows of one sheet after the other into a second file.
    const QStorageInfo storage(QDir::tempPath());
    if (storage.isValid() && storage.bytesAvailable() < needed + roomForTheRest)
        failForTemporaries();
}

void Workbook::failForTemporaries() const
{
    m_file.fail(QStringLiteral("临时目录“%1”空间不足").arg(QDir::toNativeSeparators(QDir::tempPath())));
}

void Workbook::check(int error) const
{
    if (error != LXW_NO_ERROR)
        m_file.fail(QStringLiteral("表格写不进电子表格（%1）").arg(QString::fromUtf8(lxw_strerror(lxw_error(error)))));
}

std::optional<double> exactNumber(packet::Decimal value)
{
    constexpr packet::Int128 limit = 1'000'000'000'000'000; // the first with 16 digits
    const auto fits = [&value] { return value.units < limit && value.units > -limit; };
    for (; !fits() && value.scale > 0 && value.units % 10 == 0; --value.scale)
        value.units /= 10;
    return fits() ? std::optional(value.toDouble()) : std::nullopt;
}

std::optional<double> dayNumber(std::int64_t seconds)
{
    constexpr std::int64_t firstDay = -2'203'891'200; // 1900-03-01
    constexpr double dayOfEpoch = 25'569; // 1970-01-01
    constexpr double secondsPerDay = 86'400;
    return seconds < firstDay ? std::nullopt : std::optional(dayOfEpoch + double(seconds) / secondsPerDay);
}

} // namespace files
