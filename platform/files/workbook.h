#pragma once

#include "packet/decimal.h"

#include <QByteArray>
#include <QColor>
#include <QList>
#include <QPageLayout>
#include <QString>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct lxw_format;
struct lxw_workbook;
struct lxw_worksheet;

namespace files {

class SafeFile;

/// The most rows of a sheet.
constexpr std::uint32_t mostSheetRows = 1'048'576;

/// The look of a cell. What is left out is as the spreadsheet has it.
struct CellFormat {
    QByteArray number = "General"; ///< "@" keeps a text as it is
    bool bold = false;
    bool italic = false;
    bool underline = false;
    std::optional<Qt::Alignment> alignment {}; ///< across; down it is the middle then
    QColor color {};
    QColor fill {};
    QString family {};
    qreal points = 0;
};

/// A chart of columns of a workbook's first sheet.
struct SheetChart {
    enum class Kind { Columns, Lines, Pie };
    Kind kind;
    QString title;
    int labels; ///< the column that names the values, or -1
    QList<int> values; ///< columns; their names stand in row 0
    std::uint32_t firstRow;
    std::uint32_t lastRow;
};

/// An .xlsx workbook that is written row by row from the top; only the current row is in memory, the others are in the folder for
/// temporary files. Rows and columns count from 0. Every function throws SafeFile's Exception when the disk, that folder or the
/// form of the file does not take something; nothing is lost without one.
class Workbook {
public:
    /// The file must outlive the workbook; the caller commits it.
    explicit Workbook(const SafeFile &file);
    Workbook(const Workbook &) = delete;
    ~Workbook();

    /// A format for the cells of this workbook. One object a look: a second one like it makes every cell slower.
    [[nodiscard]] lxw_format *addFormat(const CellFormat &look);

    /// Begins a sheet, to which everything below goes. A title that is taken is numbered; letters that cannot stand in one are left out.
    void addSheet(const QString &title);
    /// The format is that of the column's empty cells. May come after the cells.
    void setColumnWidth(int column, int pixels, lxw_format *format = nullptr);
    void freezePanes(std::uint32_t rows, int columns);
    /// How the sheet is printed: as wide as a page of A4, the first `titleRows` on each page, its name and the page's number below.
    void setPrinting(QPageLayout::Orientation orientation, int titleRows);
    /// A filter over the rows from the first to `lastRow` and all columns before `columns`; to be set before anything below them.
    void setFilter(std::uint32_t lastRow, int columns);

    /// A text of more than 32,767 characters, which no cell can hold, is cut and ends with "…".
    void writeText(std::uint32_t row, int column, std::string_view text, lxw_format *format);
    void writeNumber(std::uint32_t row, int column, double number, lxw_format *format);
    void writeBlank(std::uint32_t row, int column, lxw_format *format);

    /// Puts a chart at the top of the present sheet.
    void insertChart(const SheetChart &chart);

    /// Writes the file.
    void close();

private:
    struct Free {
        void operator()(lxw_workbook *book) const;
    };
    void check(int error) const;
    void checkDisk() const;
    [[noreturn]] void failForTemporaries() const;

    const SafeFile &m_file;
    std::unique_ptr<lxw_workbook, Free> m_book;
    lxw_worksheet *m_sheet = nullptr;
    std::vector<lxw_worksheet *> m_sheets;
    std::string m_text; ///< terminated
};

/// A number that a spreadsheet keeps as it is, with at most 15 digits; or nothing.
std::optional<double> exactNumber(packet::Decimal value);
/// A time, in seconds since 1970, as the days that spreadsheets count; nothing before March 1900, where they differ.
std::optional<double> dayNumber(std::int64_t seconds);

} // namespace files
