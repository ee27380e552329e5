#include "demo/sqlite_database.h"

#include "demo/text.h"

#include <sqlite3.h>

#include <cassert>
#include <stdexcept>

namespace demo {
namespace {

/// Memory for pages and sorting is bounded by the cache, in KiB.
constexpr std::string_view settings
    = "pragma journal_mode=off; pragma synchronous=off; pragma locking_mode=exclusive; pragma cache_size=-65536;";

class SqliteRows : public Rows {
public:
    SqliteRows(SqliteDatabase &database, std::string_view table);
    void text(std::string_view value) override;
    void moment(Moment value) override;
    void integer(std::int64_t value) override { check(sqlite3_bind_int64(m_statement.get(), ++m_bound, value)); }
    void hundredths(std::optional<std::int64_t> value) override;
    void add() override;

private:
    struct Finalize {
        void operator()(sqlite3_stmt *statement) const { sqlite3_finalize(statement); }
    };
    void check(int result) const
    {
        if (result != SQLITE_OK)
            m_database.fail();
    }

    SqliteDatabase &m_database;
    std::unique_ptr<sqlite3_stmt, Finalize> m_statement;
    int m_columns = 0;
    int m_bound = 0;
};

SqliteRows::SqliteRows(SqliteDatabase &database, std::string_view table)
    : m_database(database)
{
    const std::string name(table);
    sqlite3_stmt *statement = nullptr;
    check(sqlite3_prepare_v2(database.handle(), ("select * from " + name).c_str(), -1, &statement, nullptr));
    m_columns = sqlite3_column_count(statement);
    sqlite3_finalize(statement);
    std::string sql = "insert into " + name + " values (?";
    for (int column = 1; column < m_columns; ++column)
        sql += ",?";
    check(sqlite3_prepare_v3(database.handle(), (sql + ")").c_str(), -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr));
    m_statement.reset(statement);
}

void SqliteRows::text(std::string_view value)
{
    ++m_bound;
    check(value.empty() ? sqlite3_bind_null(m_statement.get(), m_bound)
                        : sqlite3_bind_text(m_statement.get(), m_bound, value.data(), static_cast<int>(value.size()), SQLITE_STATIC));
}

void SqliteRows::moment(Moment value)
{
    const auto text = momentText(value);
    check(sqlite3_bind_text(m_statement.get(), ++m_bound, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT));
}

void SqliteRows::hundredths(std::optional<std::int64_t> value)
{
    ++m_bound;
    check(value ? sqlite3_bind_double(m_statement.get(), m_bound, static_cast<double>(*value) / 100)
                : sqlite3_bind_null(m_statement.get(), m_bound));
}

void SqliteRows::add()
{
    assert(m_bound == m_columns);
    m_bound = 0;
    if (sqlite3_step(m_statement.get()) != SQLITE_DONE)
        m_database.fail();
    check(sqlite3_reset(m_statement.get()));
}

} // namespace

void SqliteDatabase::Close::operator()(sqlite3 *handle) const { sqlite3_close(handle); }

SqliteDatabase::SqliteDatabase(const std::string &path)
{
    sqlite3 *handle = nullptr;
    const int result = sqlite3_open_v2(path.c_str(), &handle, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    m_handle.reset(handle);
    if (result != SQLITE_OK)
        fail();
    run(settings);
}

void SqliteDatabase::run(std::string_view script)
{
    const std::string text(script);
    if (sqlite3_exec(handle(), text.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
        fail();
}

std::unique_ptr<Rows> SqliteDatabase::rowsOf(std::string_view table) { return std::make_unique<SqliteRows>(*this, table); }

std::string SqliteDatabase::startOfDay(std::string_view column) const { return joined({ "substr(", column, ",1,10)||' 00:00:00'" }); }

void SqliteDatabase::fail() const
{
    throw std::runtime_error(std::string("写数据库失败：") + sqlite3_errmsg(handle()) + "。请检查磁盘空间和目录权限。");
}

} // namespace demo
