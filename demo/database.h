#pragma once

#include "demo/calendar.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace demo {

/// New rows of one table: the columns in the table's order, then add(). An empty text is stored as null. Texts must live
/// until add().
class Rows {
public:
    virtual ~Rows() = default;
    virtual void text(std::string_view value) = 0;
    virtual void moment(Moment value) = 0;
    virtual void integer(std::int64_t value) = 0;
    /// A number with two decimals; null when there is none.
    virtual void hundredths(std::optional<std::int64_t> value) = 0;
    virtual void add() = 0;
};

/// A database that is written in one transaction, so that a broken run leaves nothing of use.
/// Every operation throws std::runtime_error with the database's own words.
class Database {
public:
    virtual ~Database() = default;
    /// Makes the tables or the indexes of the schema; their types are written as Oracle's.
    virtual void define(std::string_view script) = 0;
    /// Runs one statement or several.
    virtual void run(std::string_view script) = 0;
    virtual std::unique_ptr<Rows> rowsOf(std::string_view table) = 0;
    /// The SQL expression of the day of a moment, at midnight.
    virtual std::string startOfDay(std::string_view column) const = 0;
};

/// Adds rows to a table, value by value in one expression.
class Insert {
public:
    Insert(Database &database, std::string_view table)
        : m_rows(database.rowsOf(table))
    {
    }

    Insert &text(std::string_view value) { return m_rows->text(value), *this; }
    Insert &moment(Moment value) { return m_rows->moment(value), *this; }
    Insert &integer(std::int64_t value) { return m_rows->integer(value), *this; }
    Insert &hundredths(std::optional<std::int64_t> value) { return m_rows->hundredths(value), *this; }
    void add() { m_rows->add(); }

private:
    std::unique_ptr<Rows> m_rows;
};

} // namespace demo
