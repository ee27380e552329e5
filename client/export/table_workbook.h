#pragma once

#include "client/export/export_table.h"
#include "platform/files/workbook.h"

#include <functional>

namespace client {

/// Writes a table as an .xlsx workbook. The cells of text fields stay texts, times become dates and numbers numbers, as far as a
/// spreadsheet holds them exactly. Each sheet of `sheetRows` rows begins with the titles; the footers stand below the last row, the
/// notes on a sheet of their own. Throws Exception when the disk does not take it, and what `progress` throws.
void writeWorkbook(const ExportTable &table, const files::SafeFile &file, const std::function<void(std::int64_t rows)> &progress,
    std::uint32_t sheetRows = files::mostSheetRows);

} // namespace client
