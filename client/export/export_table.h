#pragma once

#include "platform/dataset/row_snapshot.h"
#include "platform/report/definition/definition.h"

#include <QList>
#include <QString>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

class TDBGridEh;

namespace client {

enum class CellKind { Text, Integer, Decimal, Float, Time };

/// What a footer row shows below a column.
struct ExportFooter {
    QString text;
    bool number = false; ///< a sum or a count
};

/// One visible column of the grid.
struct ExportColumn {
    QString title; ///< in one line
    int width = 0; ///< pixels
    CellKind kind = CellKind::Text; ///< the field's; a check-box column and one without data hold texts
    int scale = 0; ///< Decimal: most digits after the point
    int field = -1; ///< in the rows; -1: a column without data
    std::string ticked {}; ///< with `unticked`: the values of a check-box column
    std::string unticked {};
    packet::Dictionary texts {}; ///< of a column without data: one for each row
    QList<ExportFooter> footers {};

    bool isCheckBox() const { return !ticked.empty(); }
};

/// A line about a table: a condition and its value, or a circumstance of the export.
struct ExportNote {
    QString caption;
    QString value;

    bool operator==(const ExportNote &) const = default;
};

/// A chart that stands beside the grid, of the first rows.
struct ExportChart {
    report::ChartKind kind;
    QString title;
    int labels; ///< the column that names the bars, or -1
    QList<int> values; ///< columns
    int rows;
};

/// What a grid shows at one moment, for another thread to write: it shares the rows and nothing else with the grid.
struct ExportTable {
    QString title;
    QList<ExportNote> notes;
    std::vector<ExportColumn> columns; ///< in shown order
    int frozenColumns = 0;
    int footerRows = 0;
    platform::RowSnapshot rows;
    bool truncated = false; ///< the server's limit cut the rows
    QString truncationNotice {}; ///< in words; "" when nothing is cut
    std::optional<ExportChart> chart {}; ///< nothing while none is open

    /// A cell as the grid shows it, a tick as "√".
    std::string_view text(std::size_t column, std::size_t row, std::string &buffer) const;
};

/// The visible columns and the shown rows of a grid, as they are: no server is asked. Notes their number, and a limit that cut them.
ExportTable exportTable(const TDBGridEh &grid, const QString &title, const QList<ExportNote> &notes);

} // namespace client
