#pragma once

#include "engine/sqlite/statement_budget.h"

#include <sqlite3.h>

#include <memory>

namespace engine {

/// One read-only connection to a SQLite file. It runs one statement at a time and keeps nothing of it afterwards.
class SqliteConnection : public Connection {
public:
    /// Throws Error(Unavailable).
    explicit SqliteConnection(const std::string &path);
    SqliteConnection(const SqliteConnection &) = delete;
    ~SqliteConnection() override;

    std::string textFor(
        std::string_view sql, const std::vector<gate::Annotation> &annotations, std::int64_t, const gate::Reading *reading) const override
    {
        return sqliteText(sql, annotations, reading);
    }
    gate::Schema readTables(const std::vector<std::string> &names) override;
    void restrictTo(const gate::Schema &schema) override;
    packet::PacketPtr run(const Job &job) override;
    /// The file was renamed or deleted, or another one has got its name.
    bool isReplaced() const override;

private:
    struct CloseDatabase {
        void operator()(sqlite3 *database) const { sqlite3_close(database); }
    };
    struct FinalizeStatement {
        void operator()(sqlite3_stmt *statement) const { sqlite3_finalize(statement); }
    };
    using Statement = std::unique_ptr<sqlite3_stmt, FinalizeStatement>;

    void configure();
    gate::ColumnSet readColumns(const std::string &table);
    Statement prepare(const std::string &sql);
    packet::PacketPtr readRows(sqlite3_stmt *statement, StatementBudget &budget);
    int step(sqlite3_stmt *statement);
    [[noreturn]] void fail();
    bool mustStop() const { return m_job && m_job->mustStop(); }
    static int onProgress(void *connection);
    static int onBusy(void *connection, int attempts);
    static int authorize(void *connection, int action, const char *first, const char *second, const char *, const char *);
    int authorizeAction(int action, const char *first, const char *second) const;

    std::string m_path;
    std::int64_t m_keptBytes = 0; ///< by SQLite between statements, for pages above all
    std::unique_ptr<sqlite3, CloseDatabase> m_database;
    const gate::Schema *m_schema = nullptr;
    const Job *m_job = nullptr; ///< that of run(), while it runs
};

} // namespace engine
