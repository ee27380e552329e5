#include "engine/sqlite/connection.h"

#include "engine/gate/functions.h"
#include "engine/sqlite/oracle_functions.h"
#include "engine/sqlite/row_reader.h"

#include <algorithm>
#include <thread>

namespace engine {

namespace {

constexpr int stepsBetweenChecks = 200;
constexpr int longestWritten = 4 * 1024 * 1024; ///< bytes of a statement, with the sites of its reader
constexpr std::size_t longRow = 16 * 1024; ///< bytes

/// Functions that the dialect writes and a statement cannot name.
constexpr std::string_view helperFunctions[]
    = { "oracle_concat", "oracle_date_plus", "oracle_date_minus", "oracle_divisor", "oracle_single", "ifnull", "datetime", "like" };

void lowerLimits(sqlite3 *database)
{
    sqlite3_limit(database, SQLITE_LIMIT_LENGTH, 4 * 1024 * 1024);
    sqlite3_limit(database, SQLITE_LIMIT_SQL_LENGTH, longestWritten);
    sqlite3_limit(database, SQLITE_LIMIT_ATTACHED, 0);
    sqlite3_limit(database, SQLITE_LIMIT_TRIGGER_DEPTH, 1);
    sqlite3_limit(database, SQLITE_LIMIT_VARIABLE_NUMBER, 1);
    sqlite3_limit(database, SQLITE_LIMIT_WORKER_THREADS, 0);
}

} // namespace

SqliteConnection::SqliteConnection(const std::string &path)
    : m_path(path)
{
    sqlite3 *database = nullptr;
    const int result = sqlite3_open_v2(path.c_str(), &database, SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX, StatementBudget::fileSystem());
    m_database.reset(database);
    if (result != SQLITE_OK)
        throw Error(Failure::Unavailable,
            "无法打开数据库 " + path + "：" + (database ? sqlite3_errmsg(database) : "内存不足") + "；请检查路径是否正确、文件是否存在");
    configure();
}

SqliteConnection::~SqliteConnection() = default;

void SqliteConnection::configure()
{
    sqlite3 *const database = m_database.get();
    sqlite3_extended_result_codes(database, 1);
    sqlite3_db_config(database, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_FTS3_TOKENIZER, 0, nullptr);
    // A quoted name that is no column is an error, not a text.
    sqlite3_db_config(database, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
    // No memory mapping: a file that shrinks or a drive that goes away would then end the program instead of the statement.
    // A cache of this size is what is sorted in one go too, and nothing interrupts that; larger ones sorted no faster.
    constexpr auto settings = "pragma query_only=1; pragma mmap_size=0; pragma cache_size=-8192;";
    sqlite3_exec(database, settings, nullptr, nullptr, nullptr);
    lowerLimits(database);
    registerOracleFunctions(database);
    sqlite3_busy_handler(database, onBusy, this);
    sqlite3_progress_handler(database, stepsBetweenChecks, onProgress, this);
}

gate::Schema SqliteConnection::readTables(const std::vector<std::string> &names)
{
    std::vector<std::string> tables;
    const auto addTable = [](void *found, int, char **values, char **) {
        static_cast<std::vector<std::string> *>(found)->push_back(gate::upperCase(values[0]));
        return 0;
    };
    const char *const sql = "select name from sqlite_schema where type in ('table','view') and name not like 'sqlite!_%' escape '!'";
    if (sqlite3_exec(m_database.get(), sql, addTable, &tables, nullptr) != SQLITE_OK)
        throw Error(Failure::Unavailable, "文件 " + m_path + " 不是可用的数据库：" + sqlite3_errmsg(m_database.get()) + "；请检查文件");
    gate::Schema schema;
    for (const std::string &table : tables) {
        if (isWanted(table, names))
            schema.emplace(table, readColumns(table));
    }
    return schema;
}

/// None for a view whose tables are gone.
gate::ColumnSet SqliteConnection::readColumns(const std::string &table)
{
    sqlite3_stmt *prepared = nullptr;
    sqlite3_prepare_v2(m_database.get(), "select name from pragma_table_xinfo(?) where hidden<>1", -1, &prepared, nullptr);
    const Statement statement(prepared);
    sqlite3_bind_text(prepared, 1, table.c_str(), -1, SQLITE_TRANSIENT);
    gate::ColumnSet columns;
    while (sqlite3_step(prepared) == SQLITE_ROW)
        columns.insert(reinterpret_cast<const char *>(sqlite3_column_text(prepared, 0)));
    return columns;
}

void SqliteConnection::restrictTo(const gate::Schema &schema)
{
    m_schema = &schema;
    sqlite3_set_authorizer(m_database.get(), authorize, this);
}

packet::PacketPtr SqliteConnection::run(const Job &job)
{
    job.throwIfStopped();
    m_job = &job;
    StatementBudget budget(job, m_keptBytes);
    const Statement statement = prepare(job.sql);
    return readRows(statement.get(), budget);
}

bool SqliteConnection::isReplaced() const
{
    int isMoved = 0;
    sqlite3_file_control(m_database.get(), "main", SQLITE_FCNTL_HAS_MOVED, &isMoved);
    return isMoved != 0;
}

SqliteConnection::Statement SqliteConnection::prepare(const std::string &sql)
{
    sqlite3_stmt *prepared = nullptr;
    const char *tail = nullptr;
    const int result = sqlite3_prepare_v2(m_database.get(), sql.c_str(), int(sql.size()) + 1, &prepared, &tail);
    Statement statement(prepared);
    if (result != SQLITE_OK)
        fail();
    const std::string_view rest(tail, std::size_t(sql.c_str() + sql.size() - tail));
    if (!statement || !sqlite3_stmt_readonly(prepared) || sqlite3_column_count(prepared) == 0
        || rest.find_first_not_of(" \t\r\n") != std::string_view::npos)
        throw Error(Failure::Refused, "语句被拒绝：数据库没有把它读成一条查询语句，请检查语句");
    return statement;
}

packet::PacketPtr SqliteConnection::readRows(sqlite3_stmt *statement, StatementBudget &budget)
{
    SqliteRowReader reader(statement, *m_job);
    std::int64_t rows = 0;
    while (step(statement) == SQLITE_ROW) {
        if (rows == m_job->options.rowLimit)
            return reader.finish(packet::Extent::Truncated);
        // Few steps may have made a row of long texts.
        if (reader.addRow() > longRow && mustStop())
            fail();
        budget.setGathered(reader.gatheredBytes());
        if (++rows % Job::rowsBetweenReports == 0)
            m_job->report(rows);
    }
    m_job->throwIfStopped();
    m_job->report(rows);
    return reader.finish(packet::Extent::Whole);
}

int SqliteConnection::step(sqlite3_stmt *statement)
{
    const int result = sqlite3_step(statement);
    if (result != SQLITE_ROW && result != SQLITE_DONE)
        fail();
    return result;
}

/// Reports why the statement did not go on.
void SqliteConnection::fail()
{
    m_job->throwIfStopped();
    const int extended = sqlite3_extended_errcode(m_database.get());
    const int code = extended & 0xFF;
    if (code == SQLITE_NOMEM || code == SQLITE_FULL || extended == SQLITE_IOERR_NOMEM)
        StatementBudget::current()->throwIfExhausted();
    const std::string words = sqlite3_errmsg(m_database.get());
    if (code == SQLITE_NOTADB || code == SQLITE_CORRUPT || code == SQLITE_CANTOPEN || code == SQLITE_IOERR)
        throw Error(Failure::Unavailable, "数据库 " + m_path + " 无法读取：" + words);
    // Its parser counts everything that is still open, so how deep it gets depends on what stands around.
    if (words == "parser stack overflow" || words.starts_with("Expression tree is too large"))
        throw Error(
            Failure::Refused, "语句被拒绝：括号、函数或子查询嵌套太深，或一串条件、运算超过 1000 项，这个数据库读不了，请拆开或减少");
    throw Error(Failure::Database, "数据库报告错误：" + words);
}

int SqliteConnection::onProgress(void *connection) { return static_cast<SqliteConnection *>(connection)->mustStop(); }

/// While another program writes, the statement waits as long as its own limits allow.
int SqliteConnection::onBusy(void *connection, int)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    return !static_cast<const SqliteConnection *>(connection)->mustStop();
}

int SqliteConnection::authorize(void *connection, int action, const char *first, const char *second, const char *, const char *)
{
    return static_cast<const SqliteConnection *>(connection)->authorizeAction(action, first, second);
}

int SqliteConnection::authorizeAction(int action, const char *first, const char *second) const
{
    if (action == SQLITE_SELECT)
        return SQLITE_OK;
    if (action == SQLITE_READ) {
        // Without a column the rows are counted.
        const auto table = m_schema->find(std::string_view(first));
        return table != m_schema->end() && (!*second || table->second.contains(std::string_view(second))) ? SQLITE_OK : SQLITE_DENY;
    }
    if (action == SQLITE_FUNCTION) {
        const auto isNamed = [second](std::string_view helper) { return helper == second; };
        const bool helper = std::any_of(std::begin(helperFunctions), std::end(helperFunctions), isNamed);
        return helper || gate::functionNamed(second) ? SQLITE_OK : SQLITE_DENY;
    }
    return SQLITE_DENY;
}

} // namespace engine
