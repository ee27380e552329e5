#pragma once

#include <QString>

class TDBGridEh;

/// Writes what the grid shows (visible columns, shown rows and order) to a file whose ending names the form: .csv (UTF-8 with a
/// byte-order mark, CRLF, quotes as in RFC 4180) or .txt (the same, tabs between). Returns the number of rows. Writes beside the file and
/// renames at the end: a failure throws Exception and leaves no file. Cells that a spreadsheet would run as a formula get a leading tab.
int exportGrid(const TDBGridEh &grid, const QString &fileName);

/// One cell of a .csv file: guarded against formulas and quoted where needed.
QString csvCell(const QString &text);
