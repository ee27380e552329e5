#pragma once

#include "demo/calendar.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace demo {

/// A new SQLite database that is written in one go: no journal, so that a broken run leaves a file of no use.
/// Every operation throws std::runtime_error with the database's own words.
class Database {
public:
    explicit Database(const std::string &path);
    /// Runs one statement or several.
    void run(std::string_view script);
    sqlite3 *handle() const { return m_handle.get(); }
    [[noreturn]] void fail() const;

private:
    struct Close {
        void operator()(sqlite3 *handle) const;
    };
    std::unique_ptr<sqlite3, Close> m_handle;
};

/// Adds rows to a table: the columns in the table's order, then add(). An empty text is stored as null. Texts
/// must live until add().
class Insert {
public:
    Insert(Database &database, std::string_view table);

    Insert &text(std::string_view value);
    Insert &moment(Moment value);
    Insert &integer(std::int64_t value);
    /// A number with two decimals; null when there is none.
    Insert &hundredths(std::optional<std::int64_t> value);
    void add();

private:
    struct Finalize {
        void operator()(sqlite3_stmt *statement) const;
    };
    void check(int result) const;

    Database &m_database;
    std::unique_ptr<sqlite3_stmt, Finalize> m_statement;
    int m_columns = 0;
    int m_bound = 0;
};

} // namespace demo
