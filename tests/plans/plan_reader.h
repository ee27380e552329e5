#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace engine::test {

/// How a database found the rows of a statement.
struct Plan {
    std::string text; ///< as the database tells it
    std::vector<std::string> wholeTables; ///< of those that grow with the network: read from end to end, or their index is
    std::int64_t rows = 0;
    std::int64_t work = 0; ///< steps of SQLite's machine, pages that PostgreSQL looked at
    double milliseconds = 0;
};

/// Runs statements as the engine writes them for a database, and watches.
class PlanReader {
public:
    virtual ~PlanReader() = default;
    /// Throws engine::Error for what the gate refuses, std::runtime_error with the words of the database.
    virtual Plan read(const std::string &sql) = 0;
};

enum class Sequential { Allowed, Avoided };

/// `scans`: small tables are read whole by PostgreSQL because that is quick; avoided, only what has no other way is.
/// Takes the addresses of openEngine().
std::unique_ptr<PlanReader> openPlanReader(const std::string &url, Sequential scans);

/// Whether a table has more rows the longer the network works, and the more it carries.
bool growsWithNetwork(const std::string &table);

} // namespace engine::test
