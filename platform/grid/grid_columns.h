#pragma once

#include "platform/grid/column.h"

namespace platform {

/// One row of a grid's description: its kind, then what is special about it.
class GridColumn {
public:
    GridColumn(const char *field, QStringView caption, int width, Qt::Alignment alignment, NumberForm form = NumberForm::Exact);

    /// Two footers: the static text and, below it, the sum; aligned as the column unless told otherwise.
    GridColumn &sum(QStringView title, Qt::Alignment alignment = {});
    GridColumn &hidden();
    GridColumn &readOnly();
    GridColumn &checkBox(); ///< "1" ticked, "0" not
    GridColumn &ellipsis();
    GridColumn &dropDown(const QStringList &fields);

    operator const Column &() const { return m_column; }

private:
    Column m_column;
};

using GridColumns = QList<Column>;

constexpr int defaultColumnWidth = 64;

/// Kinds of columns; a field of "" makes a column without data.
GridColumn text(const char *field, QStringView caption, int width = defaultColumnWidth);
GridColumn number(const char *field, QStringView caption, int width = defaultColumnWidth);
GridColumn money(const char *field, QStringView caption, int width = defaultColumnWidth);
GridColumn time(const char *field, QStringView caption, int width = 120);

/// The columns with all their footers centred.
GridColumns centredFooters(GridColumns columns);

} // namespace platform
