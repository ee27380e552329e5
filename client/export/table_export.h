#pragma once

#include "client/export/export_table.h"
#include "platform/files/cell_text.h"

#include <functional>

namespace client {

/// Where a table goes.
struct ExportTarget {
    QString fileName; ///< its ending names the form
    QString encoding {}; ///< of .csv and .txt: "UTF-8" unless it says "GB18030"
    files::TabGuard guard = files::TabGuard::Formulas; ///< of .csv and .txt
};

/// Writes a table to a file: beside it first, renamed at the end, so that a failure throws Exception and leaves what was there before.
/// Tells `progress` of the rows written now and then; what that throws breaks off.
void writeTable(const ExportTable &table, const ExportTarget &target, const std::function<void(std::int64_t rows)> &progress);

/// The same for what a grid shows now (visible columns, shown rows, both in shown order), with the wait window and a way to cancel.
/// Returns the number of rows.
int exportGrid(const TDBGridEh &grid, const ExportTarget &target, const QString &title, const QList<ExportNote> &notes);

/// The forms for a file dialog, and the target that a person has chosen with one of them.
QStringList exportFilters();
ExportTarget chosenTarget(const QString &fileName, const QString &filter);

} // namespace client
