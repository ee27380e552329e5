#pragma once

#include "engine/dialect/connection.h"
#include "engine/odbc/handle.h"

namespace engine {

/// One connection of the ODBC driver manager, without autocommit: what a statement has begun is rolled back after it.
class OdbcConnection : public Connection {
public:
    /// Takes a connection string: "DSN=..." or "DRIVER=...;...". Throws Error(Unavailable).
    explicit OdbcConnection(const std::string &parameters);
    ~OdbcConnection() override;

    /// What is neither PostgreSQL nor SQLite gets Oracle's own text, hints included.
    std::string textFor(std::string_view sql, const std::vector<gate::Annotation> &annotations, std::int64_t rowLimit,
        const gate::Reading *reading) const override;
    gate::Schema readTables(const std::vector<std::string> &names) override;
    packet::PacketPtr run(const Job &job) override;
    bool isUsable() const override { return m_usable; }

private:
    void connect();
    void makeReadOnly();
    void command(std::string_view text);
    void findEncoding();
    odbc::Handle newStatement() const;
    std::string information(SQLUSMALLINT type) const;
    std::vector<std::string> listTables() const;
    gate::ColumnSet readColumns(const std::string &table) const;
    packet::PacketPtr execute(const Job &job);
    bool answers() const;
    bool isLost(const Error &error) const;
    bool rollBack();
    packet::PacketPtr readRows(const Job &job, const odbc::Handle &statement);

    std::string m_parameters;
    odbc::Handle m_environment;
    odbc::Handle m_connection;
    odbc::System m_system = odbc::System::Oracle;
    odbc::Encoding m_encoding = odbc::Encoding::Wide;
    bool m_usable = true;
    bool m_hasWaited = false; ///< in the pool, where it may have been lost unnoticed
};

} // namespace engine
