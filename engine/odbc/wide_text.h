#pragma once

#include "engine/odbc/odbc.h"

#include <string>
#include <string_view>
#include <vector>

/// ODBC's wide characters are UTF-16.
namespace engine::odbc {

/// Valid UTF-8 as wide characters, with a zero behind them.
std::vector<SQLWCHAR> wideOf(std::string_view text);
/// Appends `size` wide characters as UTF-8; what is no character becomes U+FFFD.
void appendText(const SQLWCHAR *characters, std::size_t size, std::string &out);

} // namespace engine::odbc
