#include "engine/postgresql/connection.h"

#include "engine/dialect/postgresql_catalogue.h"
#include "engine/postgresql/row_reader.h"
#include "engine/postgresql/session.h"

#include <algorithm>
#include <limits>

namespace engine {

namespace {

using namespace std::chrono_literals;

/// How soon a stop request is noticed while the server computes.
constexpr auto stopInterval = 5ms;
constexpr std::int64_t rowsBetweenChecks = 256;
constexpr int firstToWatchClients = 14'00'00; ///< version

} // namespace

PostgresqlConnection::PostgresqlConnection(const std::string &url)
    : m_connection(openSession(url))
{
    if (PQstatus(m_connection.get()) != CONNECTION_OK)
        failUnavailable("无法连接数据库");
    m_boundsFiles = mayBoundFiles();
}

bool PostgresqlConnection::mayBoundFiles()
{
    const Result result = execute("select pg_catalog.has_parameter_privilege('temp_file_limit', 'set')"
                                  " and pg_catalog.current_setting('temp_file_limit') = '-1'");
    return PQntuples(result.get()) == 1 && *PQgetvalue(result.get(), 0, 0) == 't';
}

gate::Schema PostgresqlConnection::readTables(const std::vector<std::string> &names)
{
    const Result result = execute(std::string(postgresqlColumns));
    if (PQresultStatus(result.get()) != PGRES_TUPLES_OK)
        failUnavailable("无法读取数据库的表");
    gate::Schema schema;
    for (int row = 0; row < PQntuples(result.get()); ++row) {
        const char *const table = PQgetvalue(result.get(), row, 0);
        if (isWanted(table, names))
            schema[gate::upperCase(table)].insert(PQgetvalue(result.get(), row, 1));
    }
    return schema;
}

/// Nothing has been missed while all that came has been replayed, and more can come; otherwise the last change tells.
std::string PostgresqlConnection::lagQuestion() const
{
    return "select (case when not pg_is_in_recovery() then 0"
           " when pg_last_wal_receive_lsn() = pg_last_wal_replay_lsn() and exists (select from pg_stat_wal_receiver) then 0"
           " else coalesce(extract(epoch from clock_timestamp() - pg_last_xact_replay_timestamp()) * 1000, 1e12) end)::bigint as lag";
}

packet::PacketPtr PostgresqlConnection::run(const Job &job)
try {
    job.throwIfStopped();
    m_usable = false;
    begin(job);
    Result first = start(job, Form::Binary);
    if (!PostgresqlRowReader::readsBinary(first.get())) {
        first.reset();
        m_input.detach(PQsocket(m_connection.get()));
        cancel();
        reset();
        begin(job);
        first = start(job, Form::Text);
    }
    auto packet = readRows(job, std::move(first));
    detach();
    end();
    return packet;
} catch (...) {
    m_input.detach(PQsocket(m_connection.get()));
    if (!m_usable)
        cancel();
    throw;
}

/// A session that was lost while it waited in the pool is replaced silently.
void PostgresqlConnection::begin(const Job &job)
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(job.deadline - Clock::now());
    const auto limit = std::clamp<std::int64_t>(left.count(), 1, std::numeric_limits<int>::max());
    std::string command = "begin transaction read only; set local statement_timeout = " + std::to_string(limit);
    // A statement whose client was killed must not run on at the server.
    if (PQserverVersion(m_connection.get()) >= firstToWatchClients)
        command += "; set local client_connection_check_interval = 5000";
    if (m_boundsFiles)
        command += "; set local temp_file_limit = '1GB'";
    Result result = execute(command);
    if (PQstatus(m_connection.get()) != CONNECTION_OK) {
        reset();
        result = execute(command);
    }
    if (PQresultStatus(result.get()) != PGRES_COMMAND_OK)
        fail(job, result.get());
}

void PostgresqlConnection::end()
{
    m_usable
        = PQresultStatus(execute("rollback").get()) == PGRES_COMMAND_OK && PQresultStatus(execute("discard all").get()) == PGRES_COMMAND_OK;
}

/// Sends the statement and waits for its first row, or for the empty result at its end.
PostgresqlConnection::Result PostgresqlConnection::start(const Job &job, Form form)
{
    // This way of sending takes one statement and no second.
    if (!PQsendQueryParams(m_connection.get(), job.sql.c_str(), 0, nullptr, nullptr, nullptr, nullptr, int(form)))
        failUnavailable("数据库连接中断");
    PQsetSingleRowMode(m_connection.get());
    m_input.attach(PQsocket(m_connection.get()));
    return next(job);
}

packet::PacketPtr PostgresqlConnection::readRows(const Job &job, Result row)
{
    PostgresqlRowReader reader(row.get(), job);
    std::int64_t rows = 0;
    bool truncated = false;
    for (; PQntuples(row.get()) > 0; row = next(job)) {
        truncated = rows == job.options.rowLimit;
        if (truncated)
            continue;
        reader.addRow(row.get());
        if (++rows % Job::rowsBetweenReports == 0)
            job.report(rows);
        if (rows % rowsBetweenChecks == 0)
            job.throwIfStopped();
    }
    while (next(job)) { }
    if (!truncated)
        job.report(rows);
    return reader.finish(truncated ? packet::Extent::Truncated : packet::Extent::Whole);
}

/// The next result of the statement; null behind the last. Throws Error.
PostgresqlConnection::Result PostgresqlConnection::next(const Job &job)
{
    await(job);
    Result result(PQgetResult(m_connection.get()));
    const ExecStatusType status = PQresultStatus(result.get());
    if (result && status != PGRES_SINGLE_TUPLE && status != PGRES_TUPLES_OK)
        fail(job, result.get());
    return result;
}

/// Waits until the next result is there.
void PostgresqlConnection::await(const Job &job)
{
    // The library holds a row twice before it gives it away.
    const std::size_t longestRow = job.options.memoryLimit / 8;
    std::size_t given = 0;
    while (PQisBusy(m_connection.get())) {
        job.throwIfStopped();
        if (m_input.isTaken() && m_input.wait(stopInterval))
            given += m_input.give();
        if (given > longestRow)
            throw Error(Failure::Database, "结果中有一行超过了 " + std::to_string(longestRow >> 20) + " MB，请减少列数或缩短文字");
        if (!PQconsumeInput(m_connection.get()))
            failUnavailable("数据库连接中断");
    }
}

/// Behind the last result. What the server has said since then is not for the statement, and not lost.
void PostgresqlConnection::detach()
{
    while (!m_input.isTaken() && PQconsumeInput(m_connection.get())) { }
    m_input.detach(PQsocket(m_connection.get()));
}

/// Asks the server to stop what this session is doing.
void PostgresqlConnection::cancel()
{
    char message[256];
    if (PGcancel *const request = PQgetCancel(m_connection.get())) {
        PQcancel(request, message, sizeof message);
        PQfreeCancel(request);
    }
}

PostgresqlConnection::Result PostgresqlConnection::execute(const std::string &command)
{
    return Result(PQexec(m_connection.get(), command.c_str()));
}

void PostgresqlConnection::reset()
{
    PQreset(m_connection.get());
    if (PQstatus(m_connection.get()) != CONNECTION_OK)
        failUnavailable("无法连接数据库");
}

/// Reports why the statement did not go on.
void PostgresqlConnection::fail(const Job &job, const PGresult *result)
{
    constexpr std::string_view cancelled = "57014";
    const char *const code = PQresultErrorField(result, PG_DIAG_SQLSTATE);
    const char *const primary = PQresultErrorField(result, PG_DIAG_MESSAGE_PRIMARY);
    // Our own bounds are constraints, whose names say what is wrong.
    const char *const constraint = PQresultErrorField(result, PG_DIAG_CONSTRAINT_NAME);
    const std::string words = constraint ? constraint : primary ? primary : trimmedMessage(PQresultErrorMessage(result));
    const bool isCancelled = code && code == cancelled;
    do
        await(job);
    while (Result(PQgetResult(m_connection.get())));
    detach();
    if (PQstatus(m_connection.get()) != CONNECTION_OK)
        throw Error(Failure::Unavailable, "数据库连接中断：" + words + "；请稍后再试");
    end();
    job.throwIfStopped();
    // The server's clock may run a little ahead of ours.
    if (isCancelled && job.deadline - Clock::now() < 1s)
        throw Error(Failure::TimeLimit, "查询超过了规定的时间，请缩小查询范围");
    throw Error(Failure::Database, "数据库报告错误：" + words);
}

void PostgresqlConnection::failUnavailable(const std::string &what)
{
    throw Error(
        Failure::Unavailable, what + "：" + trimmedMessage(PQerrorMessage(m_connection.get())) + "；请检查数据库服务器和网络，稍后再试");
}

} // namespace engine
