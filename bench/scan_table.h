#pragma once

#include <string>

struct sqlite3;

/// The arrival scans that the benchmarks work on: the same rows every time.
constexpr int scanCount = 1'000'000;
constexpr auto allScans = "select * from TAB_SCAN_COME";

/// SQLite's statements that make the table and fill it.
std::string scanTableScript(int rows);
/// Steps through all scans and reads every value, which is the least that any reader does. Ends the program when rows are missing.
void readScansBare(sqlite3 *database);
