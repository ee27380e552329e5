#pragma once

#include "engine/engine.h"
#include "engine/gate/gate.h"

#include <sqlite3.h>

#include <memory>

namespace engine {

/// One read-only connection to a SQLite file. It runs one statement at a time and keeps nothing of it afterwards.
class SqliteConnection {
public:
    using Clock = std::chrono::steady_clock;

    /// Throws Error(Unavailable).
    explicit SqliteConnection(const std::string &path);
    SqliteConnection(const SqliteConnection &) = delete;
    ~SqliteConnection();

    /// The names of the tables and views of the schema, in capitals.
    gate::TableSet readTables();
    /// From here on only these tables may be read, and nothing else be done.
    void restrictTo(const gate::TableSet &tables);
    /// Runs SQLite's own text. With a sink the rows go there and the packet is null. Throws Error.
    packet::PacketPtr run(const std::string &sql, const QueryOptions &options, Clock::time_point deadline, packet::BlockSink *sink);

private:
    struct CloseDatabase {
        void operator()(sqlite3 *database) const { sqlite3_close(database); }
    };
    struct FinalizeStatement {
        void operator()(sqlite3_stmt *statement) const { sqlite3_finalize(statement); }
    };
    using Statement = std::unique_ptr<sqlite3_stmt, FinalizeStatement>;

    void configure();
    Statement prepare(const std::string &sql);
    packet::PacketPtr readRows(sqlite3_stmt *statement, const QueryOptions &options, packet::BlockSink *sink);
    int step(sqlite3_stmt *statement);
    [[noreturn]] void fail();
    bool mustStop() const;
    static int onProgress(void *connection);
    static int onBusy(void *connection, int attempts);
    static int authorize(void *connection, int action, const char *first, const char *second, const char *, const char *);
    int authorizeAction(int action, const char *first, const char *second) const;

    std::string m_path;
    std::unique_ptr<sqlite3, CloseDatabase> m_database;
    const gate::TableSet *m_tables = nullptr;
    std::stop_token m_stop {}; ///< of the statement that runs
    Clock::time_point m_deadline = Clock::time_point::max();
};

} // namespace engine
