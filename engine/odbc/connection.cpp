#include "engine/odbc/connection.h"

#include "engine/dialect/postgresql_catalogue.h"
#include "engine/odbc/canceller.h"
#include "engine/odbc/row_reader.h"
#include "engine/odbc/wide_text.h"

#include <algorithm>

namespace engine {

namespace {

using namespace std::chrono_literals;
using odbc::Handle;
using odbc::System;

constexpr SQLULEN loginSeconds = 10;

SQLPOINTER attribute(SQLULEN value) { return reinterpret_cast<SQLPOINTER>(value); }

void setTimeLimit(const Handle &statement, Clock::time_point deadline)
{
    const auto left = std::chrono::ceil<std::chrono::seconds>(deadline - Clock::now()).count();
    if (left < std::chrono::seconds(24h).count())
        SQLSetStmtAttr(statement, SQL_ATTR_QUERY_TIMEOUT, attribute(SQLULEN(std::max<std::int64_t>(left, 1))), 0);
}

/// A short text of the row at hand; empty for null.
std::string valueOf(const Handle &statement, SQLUSMALLINT column)
{
    char value[512] = {};
    SQLLEN bytes = 0;
    std::string buffer;
    if (!SQL_SUCCEEDED(SQLGetData(statement, column, statement.textType(), value, sizeof value, &bytes)) || bytes <= 0)
        return {};
    return std::string(odbc::textOf(statement.encoding(), value, std::min(std::size_t(bytes), sizeof value), buffer));
}

} // namespace

OdbcConnection::OdbcConnection(const std::string &parameters)
    : m_parameters(parameters)
    , m_environment(SQL_HANDLE_ENV, nullptr)
{
    SQLSetEnvAttr(m_environment, SQL_ATTR_ODBC_VERSION, attribute(SQL_OV_ODBC3), 0);
    connect();
}

OdbcConnection::~OdbcConnection()
{
    if (m_connection)
        rollBack();
}

bool OdbcConnection::rollBack() { return SQL_SUCCEEDED(SQLEndTran(SQL_HANDLE_DBC, m_connection, SQL_ROLLBACK)); }

void OdbcConnection::connect()
{
    m_connection = Handle();
    Handle connection(SQL_HANDLE_DBC, m_environment);
    SQLSetConnectAttrW(connection, SQL_ATTR_LOGIN_TIMEOUT, attribute(loginSeconds), 0);
    SQLSetConnectAttrW(connection, SQL_ATTR_ACCESS_MODE, attribute(SQL_MODE_READ_ONLY), 0);
    auto parameters = odbc::wideOf(m_parameters);
    if (!SQL_SUCCEEDED(SQLDriverConnectW(connection, nullptr, parameters.data(), SQL_NTS, nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT)))
        throw Error(Failure::Unavailable,
            "无法连接 ODBC 数据源：" + odbc::diagnosisOf(connection).message + "；请检查数据源的设置、数据库服务器和网络");
    m_connection = std::move(connection);
    m_hasWaited = false;
    const std::string name = information(SQL_DBMS_NAME);
    m_system = name == "PostgreSQL" ? System::Postgresql : name == "SQLite" ? System::Sqlite : System::Oracle;
    findEncoding();
    makeReadOnly();
    SQLSetConnectAttrW(m_connection, SQL_ATTR_AUTOCOMMIT, attribute(SQL_AUTOCOMMIT_OFF), 0);
}

/// The attribute is a hint that drivers may pass over.
void OdbcConnection::makeReadOnly()
{
    if (m_system == System::Sqlite)
        command("pragma query_only=1");
    if (m_system == System::Postgresql) {
        command("set default_transaction_read_only = on");
        // While the server compiles a statement it cannot be stopped.
        command("set jit = off");
    }
}

void OdbcConnection::command(std::string_view text)
{
    const Handle statement = newStatement();
    if (!odbc::execute(statement, text))
        odbc::fail(statement);
}

/// Whether a Han character survives as a wide one: some managers cut them for drivers that know bytes alone.
void OdbcConnection::findEncoding()
{
    const Handle statement(SQL_HANDLE_STMT, m_connection, odbc::Encoding::Wide);
    std::string text;
    SQLWCHAR value[8] = {};
    SQLLEN bytes = 0;
    if (odbc::execute(statement, m_system == System::Oracle ? "select '中' from dual" : "select '中'") && SQL_SUCCEEDED(SQLFetch(statement))
        && SQL_SUCCEEDED(SQLGetData(statement, 1, SQL_C_WCHAR, value, sizeof value, &bytes)) && bytes > 0)
        odbc::appendText(value, std::min(std::size_t(bytes) / sizeof(SQLWCHAR), std::size(value)), text);
    m_encoding = text.empty() || text == "中" ? odbc::Encoding::Wide : odbc::Encoding::Utf8;
}

odbc::Handle OdbcConnection::newStatement() const { return Handle(SQL_HANDLE_STMT, m_connection, m_encoding); }

std::string OdbcConnection::information(SQLUSMALLINT type) const
{
    SQLWCHAR value[128] = {};
    SQLSMALLINT bytes = 0;
    std::string text;
    if (SQL_SUCCEEDED(SQLGetInfoW(m_connection, type, value, sizeof value, &bytes)))
        odbc::appendText(value, std::min(std::size_t(bytes), sizeof value) / sizeof(SQLWCHAR), text);
    return text;
}

gate::Schema OdbcConnection::readTables(const std::vector<std::string> &names)
{
    gate::Schema schema;
    if (m_system == System::Postgresql) {
        const Handle statement = newStatement();
        if (!odbc::execute(statement, postgresqlColumns))
            odbc::fail(statement);
        while (SQL_SUCCEEDED(SQLFetch(statement))) {
            const std::string table = gate::upperCase(valueOf(statement, 1));
            if (isWanted(table, names))
                schema[table].insert(valueOf(statement, 2));
        }
    } else {
        for (const std::string &name : names.empty() ? listTables() : names) {
            const std::string table = gate::upperCase(name);
            if (gate::ColumnSet columns = readColumns(table); !columns.empty())
                schema.emplace(table, std::move(columns));
        }
    }
    rollBack();
    m_hasWaited = true;
    return schema;
}

/// The names of the tables. In an Oracle-class database they are the account's own: the catalogue lists those of the system
/// beside them.
std::vector<std::string> OdbcConnection::listTables() const
{
    constexpr SQLUSMALLINT nameOfTable = 3;
    const Handle statement = newStatement();
    auto schema = odbc::wideOf(gate::upperCase(information(SQL_USER_NAME)));
    auto name = odbc::wideOf("%");
    auto types = odbc::wideOf("TABLE,VIEW");
    if (!SQL_SUCCEEDED(SQLTablesW(statement, nullptr, 0, m_system == System::Oracle ? schema.data() : nullptr, SQL_NTS, name.data(),
            SQL_NTS, types.data(), SQL_NTS)))
        odbc::fail(statement);
    std::vector<std::string> tables;
    while (SQL_SUCCEEDED(SQLFetch(statement)))
        tables.push_back(valueOf(statement, nameOfTable));
    return tables;
}

/// None of a table that is not there or may not be read. A synonym has them too, though no catalogue lists them under its name.
gate::ColumnSet OdbcConnection::readColumns(const std::string &table) const
{
    const Handle statement = newStatement();
    gate::ColumnSet columns;
    SQLSMALLINT count = 0;
    if (table.find('"') == std::string::npos && odbc::execute(statement, "select * from \"" + table + "\" where 1=0"))
        SQLNumResultCols(statement, &count);
    for (SQLSMALLINT column = 1; column <= count; ++column)
        columns.insert(odbc::describe(statement, SQLUSMALLINT(column)).name);
    return columns;
}

std::string OdbcConnection::textFor(
    std::string_view sql, const std::vector<gate::Annotation> &annotations, std::int64_t rowLimit, const gate::Reading *reading) const
{
    switch (m_system) {
    case System::Sqlite:
        return sqliteText(sql, annotations, reading);
    case System::Postgresql:
        return postgresqlText(sql, annotations, rowLimit, reading);
    case System::Oracle:
        break;
    }
    return oracleText(sql, annotations, reading);
}

packet::PacketPtr OdbcConnection::run(const Job &job)
{
    job.throwIfStopped();
    m_usable = false;
    if (m_hasWaited && !answers())
        connect();
    packet::PacketPtr packet;
    try {
        packet = execute(job);
    } catch (const Error &error) {
        const bool lost = isLost(error);
        m_usable = !lost && error.failure() == Failure::Database && rollBack();
        job.throwIfStopped();
        if (lost)
            throw Error(Failure::Unavailable, error.what());
        throw;
    }
    m_hasWaited = true;
    m_usable = rollBack();
    return packet;
}

/// False when the connection was lost while it waited in the pool.
bool OdbcConnection::answers() const
{
    return odbc::execute(newStatement(), m_system == System::Oracle ? "select 1 from dual" : "select 1");
}

/// Whether the connection is gone; not every driver says so by the state of the error.
bool OdbcConnection::isLost(const Error &error) const
{
    SQLUINTEGER dead = SQL_CD_FALSE;
    SQLGetConnectAttrW(m_connection, SQL_ATTR_CONNECTION_DEAD, &dead, SQL_IS_UINTEGER, nullptr);
    return error.failure() == Failure::Unavailable || dead == SQL_CD_TRUE;
}

packet::PacketPtr OdbcConnection::execute(const Job &job)
{
    const Handle statement = newStatement();
    SQLSetStmtAttr(statement, SQL_ATTR_NOSCAN, attribute(SQL_NOSCAN_ON), 0);
    setTimeLimit(statement, job.deadline);
    const odbc::Canceller canceller(statement, job);
    if (!odbc::execute(statement, job.sql))
        odbc::fail(statement);
    return readRows(job, statement);
}

packet::PacketPtr OdbcConnection::readRows(const Job &job, const Handle &statement)
{
    odbc::RowReader reader(statement, m_system, job);
    std::int64_t rows = 0;
    while (const std::size_t fetched = reader.fetch()) {
        job.throwIfStopped();
        for (std::size_t row = 0; row < fetched; ++row) {
            if (rows == job.options.rowLimit)
                return reader.finish(packet::Extent::Truncated);
            reader.addRow(row);
            if (++rows % Job::rowsBetweenReports == 0)
                job.report(rows);
        }
    }
    job.report(rows);
    return reader.finish(packet::Extent::Whole);
}

} // namespace engine
