#pragma once

#include <string>

namespace server {

/// Filled up with blanks to a column of a table on a terminal, where wide characters take two places; at least one blank follows.
std::string padded(std::string text, std::size_t columns);
/// A statement in one line of a table: its first 160 bytes, without control characters.
std::string oneLine(std::string text);

} // namespace server
