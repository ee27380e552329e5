#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace server {

/// A row of a CSV text, and the line on which it begins.
struct CsvRow {
    int line = 0;
    std::vector<std::string> cells {};
};

/// Reads RFC 4180, with any line ends and a byte order mark or none; empty lines are passed over. Throws std::runtime_error when the text
/// is no UTF-8 or a quote is not closed.
std::vector<CsvRow> readCsv(std::string_view text);

} // namespace server
