#pragma once

#include "demo/postgresql_database.h"

#include <string>
#include <vector>

namespace demo {

/// Tables that are made apart, in a schema of their own, by as many sessions as like, and take their place at once when they are
/// complete. Whoever may read new tables of the place may read them.
class PostgresqlStaging {
public:
    /// `tables`: their names. `replaces`: those that are there give way. Throws std::runtime_error.
    PostgresqlStaging(const std::string &url, std::vector<std::string> tables, bool replaces);
    PostgresqlStaging(const PostgresqlStaging &) = delete;
    /// What did not take its place goes away.
    ~PostgresqlStaging();

    /// A session that sees the new tables.
    PostgresqlDatabase connect() const;
    /// Counts the rows and marks them as seen by all, which cannot be done within a transaction.
    void settle();
    void publish();

private:
    std::string m_url;
    std::vector<std::string> m_tables;
    PostgresqlDatabase m_database;
    std::string m_place; ///< the schema that they go to
};

} // namespace demo
