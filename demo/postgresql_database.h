#pragma once

#include "demo/database.h"

#include <memory>
#include <vector>

struct pg_conn;

namespace demo {

/// One session that writes to tables in the first schema of its search path.
class PostgresqlDatabase : public Database {
public:
    /// Takes a URL "postgresql://user@host/database".
    explicit PostgresqlDatabase(const std::string &url);
    void define(std::string_view script) override;
    void run(std::string_view script) override;
    std::unique_ptr<Rows> rowsOf(std::string_view table) override;
    std::string startOfDay(std::string_view column) const override;
    /// The first value of a query; empty when there is none.
    std::string answer(const std::string &question) const;

    /// Sends rows in the text form of COPY and empties the buffer.
    void copy(const std::string &table, std::string &rows);

private:
    class PostgresqlRows;
    struct Finish {
        void operator()(pg_conn *connection) const;
    };
    [[noreturn]] void fail() const;

    std::unique_ptr<pg_conn, Finish> m_connection;
    /// What has not been sent yet, by table.
    struct Pending {
        std::string table;
        std::string rows;
    };
    std::vector<std::unique_ptr<Pending>> m_pending;
};

} // namespace demo
