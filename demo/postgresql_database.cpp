#include "demo/postgresql_database.h"

#include "demo/postgresql_schema.h"
#include "demo/text.h"

#include <libpq-fe.h>

#include <algorithm>
#include <stdexcept>

namespace demo {
namespace {

constexpr std::size_t sentAtOnce = 256 * 1024; ///< bytes

struct Clear {
    void operator()(PGresult *result) const { PQclear(result); }
};
using Result = std::unique_ptr<PGresult, Clear>;

} // namespace

/// Writes rows as lines of COPY into the buffer of their table.
class PostgresqlDatabase::PostgresqlRows : public Rows {
public:
    PostgresqlRows(PostgresqlDatabase &database, Pending &pending)
        : m_database(database)
        , m_pending(pending)
    {
    }
    void text(std::string_view value) override
    {
        if (value.empty())
            return put("\\N");
        for (const char character : value)
            escape(character);
        m_pending.rows += '\t';
    }
    void moment(Moment value) override
    {
        const auto written = momentText(value);
        put({ written.data(), written.size() });
    }
    void integer(std::int64_t value) override { put(std::to_string(value)); }
    void hundredths(std::optional<std::int64_t> value) override
    {
        if (!value)
            return put("\\N");
        const auto amount = static_cast<std::uint64_t>(*value < 0 ? -*value : *value);
        put(numbered(std::to_string(amount / 100).insert(0, *value < 0 ? "-" : "") + ".", amount % 100, 2));
    }
    void add() override
    {
        m_pending.rows.back() = '\n';
        if (m_pending.rows.size() >= sentAtOnce)
            m_database.copy(m_pending.table, m_pending.rows);
    }

private:
    void put(std::string_view value) { m_pending.rows.append(value) += '\t'; }
    void escape(char character)
    {
        if (character == '\\' || character == '\t' || character == '\n' || character == '\r')
            m_pending.rows += '\\';
        m_pending.rows += character;
    }

    PostgresqlDatabase &m_database;
    Pending &m_pending;
};

void PostgresqlDatabase::Finish::operator()(pg_conn *connection) const { PQfinish(connection); }

PostgresqlDatabase::PostgresqlDatabase(const std::string &url)
    : m_connection(PQconnectdb(url.c_str()))
{
    if (PQstatus(m_connection.get()) != CONNECTION_OK)
        fail();
    if (PQsetClientEncoding(m_connection.get(), "UTF8") != 0)
        fail();
    run("set client_min_messages = warning");
}

void PostgresqlDatabase::define(std::string_view script) { run(postgresqlTypes(script)); }

std::string PostgresqlDatabase::answer(const std::string &question) const
{
    const Result result(PQexec(m_connection.get(), question.c_str()));
    if (PQresultStatus(result.get()) != PGRES_TUPLES_OK)
        fail();
    return PQntuples(result.get()) == 0 ? std::string() : PQgetvalue(result.get(), 0, 0);
}

void PostgresqlDatabase::run(std::string_view script)
{
    for (const auto &pending : m_pending)
        copy(pending->table, pending->rows);
    const Result result(PQexec(m_connection.get(), std::string(script).c_str()));
    if (PQresultStatus(result.get()) != PGRES_COMMAND_OK)
        fail();
}

std::unique_ptr<Rows> PostgresqlDatabase::rowsOf(std::string_view table)
{
    const auto isOfTable = [table](const auto &pending) { return pending->table == table; };
    auto found = std::find_if(m_pending.begin(), m_pending.end(), isOfTable);
    if (found == m_pending.end())
        found = m_pending.insert(found, std::make_unique<Pending>(Pending { std::string(table), {} }));
    return std::make_unique<PostgresqlRows>(*this, **found);
}

std::string PostgresqlDatabase::startOfDay(std::string_view column) const { return joined({ "date_trunc('day',", column, ")" }); }

void PostgresqlDatabase::copy(const std::string &table, std::string &rows)
{
    if (rows.empty())
        return;
    PGconn *const connection = m_connection.get();
    if (PQresultStatus(Result(PQexec(connection, ("copy " + table + " from stdin").c_str())).get()) != PGRES_COPY_IN)
        fail();
    if (PQputCopyData(connection, rows.data(), static_cast<int>(rows.size())) != 1 || PQputCopyEnd(connection, nullptr) != 1)
        fail();
    while (const Result result { PQgetResult(connection) }) {
        if (PQresultStatus(result.get()) != PGRES_COMMAND_OK)
            fail();
    }
    rows.clear();
}

void PostgresqlDatabase::fail() const
{
    throw std::runtime_error(std::string("写数据库失败：") + PQerrorMessage(m_connection.get()) + "请检查数据库地址和用户权限。");
}

} // namespace demo
