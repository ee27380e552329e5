#pragma once

#include <string>

/// The arrival scans that the benchmarks work on: the same rows every time.
constexpr int scanCount = 1'000'000;
constexpr auto allScans = "select * from TAB_SCAN_COME";

/// SQLite's statements that make the table and fill it.
std::string scanTableScript(int rows);
