#pragma once

#include "demo/database.h"

#include <memory>
#include <vector>

struct pg_conn;

namespace demo {

/// A schema whose types are Oracle's, in PostgreSQL's words.
std::string postgresqlTypes(std::string_view script);

/// Tables in the first schema of the search path of a PostgreSQL database. Nothing of them is seen before the commit.
class PostgresqlDatabase : public Database {
public:
    /// Takes a URL "postgresql://user@host/database". `replaces`: tables of the schema that are there give way.
    PostgresqlDatabase(const std::string &url, bool replaces);
    void define(std::string_view script) override;
    void run(std::string_view script) override;
    std::unique_ptr<Rows> rowsOf(std::string_view table) override;
    std::string startOfDay(std::string_view column) const override;

    /// Sends rows in the text form of COPY and empties the buffer.
    void copy(const std::string &table, std::string &rows);

private:
    class PostgresqlRows;
    struct Finish {
        void operator()(pg_conn *connection) const;
    };
    void refuseExisting(const std::string &table);
    [[noreturn]] void fail() const;

    std::unique_ptr<pg_conn, Finish> m_connection;
    bool m_replaces;
    /// What has not been sent yet, by table.
    struct Pending {
        std::string table;
        std::string rows;
    };
    std::vector<std::unique_ptr<Pending>> m_pending;
};

} // namespace demo
