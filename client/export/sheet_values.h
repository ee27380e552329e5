#pragma once

#include "client/export/export_table.h"

#include <QByteArray>

/// A number that a spreadsheet keeps as it is, with at most 15 digits; or nothing.
std::optional<double> exactNumber(packet::Decimal value);
/// A time, in seconds since 1970, as the days that spreadsheets count; nothing before March 1900, where they differ.
std::optional<double> dayNumber(std::int64_t seconds);
/// The number format of a column's cells; `scale`: most digits after the point.
QByteArray numberFormat(CellKind kind, int scale);
/// The name of the sheet, the `number`th of that title: without the letters that a name cannot hold, and not longer than it can be.
QByteArray sheetName(const QString &title, int number);
/// Cuts a text that a cell cannot hold, and marks the cut.
void shortenForCell(std::string &text);
