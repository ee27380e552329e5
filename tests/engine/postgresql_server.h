#pragma once

#include <filesystem>
#include <string>

namespace engine::test {

/// A PostgreSQL server of the test program's own: in the temporary directory, without network, started with the first call and
/// stopped when the tests are over.
class PostgresqlServer {
public:
    /// Throws std::runtime_error with the reason when it does not start.
    static PostgresqlServer &instance();

    PostgresqlServer(const PostgresqlServer &) = delete;
    ~PostgresqlServer();

    /// Makes a database with the functions of oracle.sql, runs the SQL in it and returns its name. Types may be Oracle's.
    std::string makeDatabase(const std::string &sql = {});
    /// The address of a database, for its owner or for an account that may only read.
    std::string ownerUrl(const std::string &database) const { return url("owner", database); }
    std::string readerUrl(const std::string &database) const { return url("reader", database); }
    std::string odbcUrl(const std::string &database) const;
    /// The path of the socket that it listens on.
    std::string socketPath() const { return (m_folder / ".s.PGSQL.5432").string(); }
    /// Runs SQL as the owner; returns the first value of its result, if it has one.
    std::string run(const std::string &database, const std::string &sql) const;

private:
    PostgresqlServer();
    std::string url(const std::string &user, const std::string &database) const;
    void start();
    void prepareTemplate();
    void stop();

    std::filesystem::path m_folder;
    int m_process = -1;
    int m_databases = 0;
};

} // namespace engine::test
