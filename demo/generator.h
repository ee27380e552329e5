#pragma once

#include "demo/calendar.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace demo {

struct Settings {
    std::string path; ///< the SQLite file to make, or the URL of a PostgreSQL database; UTF-8
    std::uint64_t waybills = 20000;
    int days = 0; ///< how many days of pick-ups end with `asOf`; 0: from the first day of the month before
    std::uint64_t seed = 1;
    Moment asOf = 0; ///< nothing later than this is recorded
    bool isMonthly = false; ///< whether PostgreSQL keeps the scans of each month in a part of their table
    bool replaces = false; ///< whether an existing file, or existing tables, may be replaced
};

/// Told now and then what is being done; `total` is 0 where it is not known.
using Progress = std::function<void(std::string_view work, std::uint64_t done, std::uint64_t total)>;

/// Makes the database: a file is written beside its path and takes its name when it is complete, tables of a PostgreSQL database are
/// filled apart by several sessions and take their place together. Equal settings make equal rows.
/// Memory does not grow with the number of waybills. Throws std::runtime_error or std::invalid_argument, in Chinese.
void generate(const Settings &settings, const Progress &progress = {});

} // namespace demo
