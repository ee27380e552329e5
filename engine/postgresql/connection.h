#pragma once

#include "engine/dialect/connection.h"
#include "engine/postgresql/metered_input.h"

#include <libpq-fe.h>

#include <memory>

namespace engine {

/// One session of a PostgreSQL server. Every statement runs in a read-only transaction that is rolled back, and the session
/// forgets its settings after it. The server has to have been prepared with oracle.sql.
class PostgresqlConnection : public Connection {
public:
    /// Takes a URL "postgresql://user@host/database" with libpq's parameters. Throws Error(Unavailable).
    explicit PostgresqlConnection(const std::string &url);

    std::string textFor(std::string_view sql, const std::vector<gate::Annotation> &annotations, std::int64_t rowLimit,
        const gate::Reading *reading) const override
    {
        return postgresqlText(sql, annotations, rowLimit, reading);
    }
    gate::Schema readTables(const std::vector<std::string> &names) override;
    packet::PacketPtr run(const Job &job) override;
    std::string lagQuestion() const override;
    bool isUsable() const override { return m_usable; }

private:
    struct Finish {
        void operator()(PGconn *connection) const { PQfinish(connection); }
    };
    struct Clear {
        void operator()(PGresult *result) const { PQclear(result); }
    };
    using Result = std::unique_ptr<PGresult, Clear>;
    enum class Form : int { Text, Binary };

    bool mayBoundFiles();
    void begin(const Job &job);
    void end();
    Result start(const Job &job, Form form);
    packet::PacketPtr readRows(const Job &job, Result row);
    Result next(const Job &job);
    void await(const Job &job);
    void detach();
    void cancel();
    Result execute(const std::string &command);
    void reset();
    [[noreturn]] void fail(const Job &job, const PGresult *result);
    [[noreturn]] void failUnavailable(const std::string &what);

    std::unique_ptr<PGconn, Finish> m_connection;
    MeteredInput m_input; ///< attached while the rows of a statement come
    bool m_usable = true;
    bool m_boundsFiles = false; ///< temporary files of a statement, which the server leaves unbounded
};

} // namespace engine
