#include "postgresql_server.h"

#include "demo/postgresql_schema.h"
#include "support.h"

#include <gtest/gtest.h>
#include <libpq-fe.h>
#include <pwd.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <memory>
#include <optional>
#include <stdexcept>
#include <thread>
#include <vector>

namespace engine::test {

namespace {

std::unique_ptr<PostgresqlServer> theServer;

class StopAtTheEnd : public testing::Environment {
public:
    void TearDown() override { theServer.reset(); }
};
testing::Environment *const stopAtTheEnd = testing::AddGlobalTestEnvironment(new StopAtTheEnd);

/// The account that the server runs as: it refuses to run as root.
std::optional<passwd> serverAccount()
{
    if (geteuid() != 0)
        return std::nullopt;
    const passwd *const account = getpwnam("postgres");
    if (!account)
        throw std::runtime_error("the account postgres is missing: is the package postgresql-15 installed?");
    return *account;
}

/// Starts a program of PostgreSQL's. It ends when this one does, however this one ends.
pid_t started(const std::string &program, std::vector<std::string> arguments, const std::filesystem::path &log)
{
    const auto account = serverAccount();
    const std::string path = std::string(KELVARA_POSTGRESQL_PROGRAMS) + "/" + program;
    std::vector<char *> pointers { const_cast<char *>(path.c_str()) };
    for (std::string &argument : arguments)
        pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    const pid_t process = fork();
    if (process != 0)
        return process;
    if (account && (setgid(account->pw_gid) != 0 || setuid(account->pw_uid) != 0))
        _exit(126);
    prctl(PR_SET_PDEATHSIG, SIGINT);
    if (std::freopen(log.c_str(), "a", stdout) == nullptr || dup2(1, 2) < 0)
        _exit(126);
    execv(path.c_str(), pointers.data());
    _exit(127);
}

struct Finish {
    void operator()(PGconn *connection) const { PQfinish(connection); }
};
struct Clear {
    void operator()(PGresult *result) const { PQclear(result); }
};

} // namespace

PostgresqlServer &PostgresqlServer::instance()
{
    if (!theServer)
        theServer.reset(new PostgresqlServer);
    return *theServer;
}

PostgresqlServer::PostgresqlServer()
    : m_folder(std::filesystem::temp_directory_path() / ("kelvara-pg-" + std::to_string(getpid())))
{
    std::filesystem::create_directory(m_folder);
    try {
        start();
        prepareTemplate();
    } catch (...) {
        stop();
        throw;
    }
}

PostgresqlServer::~PostgresqlServer() { stop(); }

void PostgresqlServer::start()
{
    if (const auto account = serverAccount(); account && chown(m_folder.c_str(), account->pw_uid, account->pw_gid) != 0)
        throw std::runtime_error("cannot give the folder of the server to its account");
    const std::string data = m_folder / "data";
    const auto log = m_folder / "log";
    int status = 0;
    waitpid(
        started("initdb", { "-D", data, "-U", "owner", "-A", "trust", "-E", "UTF8", "--lc-collate=C", "--lc-ctype=C.UTF-8", "-N" }, log),
        &status, 0);
    if (status != 0)
        throw std::runtime_error("initdb failed (packages postgresql-15 and postgresql-15-orafce): " + log.string());
    m_process = started("postgres",
        { "-D", data, "-k", m_folder, "-c", "listen_addresses=", "-c", "fsync=off", "-c", "full_page_writes=off", "-c",
            "max_connections=30", "-c", "autovacuum=off" },
        log);
    while (PQping(ownerUrl("postgres").c_str()) != PQPING_OK) {
        if (waitpid(m_process, &status, WNOHANG) != 0) {
            m_process = -1;
            throw std::runtime_error("the PostgreSQL server did not start: " + log.string());
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

void PostgresqlServer::prepareTemplate()
{
    run("template1", fileText("engine/postgresql/oracle.sql"));
    run("template1", "create user reader in role kelvara_reader");
}

void PostgresqlServer::stop()
{
    if (m_process > 0) {
        kill(m_process, SIGINT);
        waitpid(m_process, nullptr, 0);
        m_process = -1;
    }
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

std::string PostgresqlServer::makeDatabase(const std::string &sql)
{
    const std::string name = "test" + std::to_string(++m_databases);
    run("postgres", "create database " + name);
    if (!sql.empty())
        run(name, demo::postgresqlTypes(sql));
    return name;
}

std::string PostgresqlServer::run(const std::string &database, const std::string &sql) const
{
    const std::unique_ptr<PGconn, Finish> connection(PQconnectdb(ownerUrl(database).c_str()));
    const std::unique_ptr<PGresult, Clear> result(PQexec(connection.get(), sql.c_str()));
    const auto status = PQresultStatus(result.get());
    if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK)
        throw std::runtime_error(PQerrorMessage(connection.get()) + sql.substr(0, 200));
    return PQntuples(result.get()) > 0 ? PQgetvalue(result.get(), 0, 0) : "";
}

std::string PostgresqlServer::url(const std::string &user, const std::string &database) const
{
    return "postgresql://" + user + "@/" + database + "?host=" + m_folder.string();
}

std::string PostgresqlServer::odbcUrl(const std::string &database) const
{
    return "odbc:DRIVER={PostgreSQL Unicode};SERVERNAME=" + m_folder.string() + ";DATABASE=" + database
        + ";UID=reader;UseDeclareFetch=1;Fetch=8192";
}

} // namespace engine::test
