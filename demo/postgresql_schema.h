#pragma once

#include "demo/calendar.h"

#include <string>
#include <string_view>
#include <vector>

namespace demo {

/// A schema whose types are Oracle's, in PostgreSQL's words.
std::string postgresqlTypes(std::string_view script);

/// The names of the tables that a schema makes, in its order.
std::vector<std::string> tablesOf(std::string_view script);

/// The tables of a schema in PostgreSQL's words, with what keeps those that grow quick.
std::string postgresqlTables(std::string_view script);
/// Likewise, with the tables of scans in parts: one for each month between two moments and for the one behind them, and one for the
/// scans of all other months.
std::string monthlyTables(std::string_view script, Moment first, Moment last);

} // namespace demo
