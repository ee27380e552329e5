#include "tests/plans/plan_reader.h"

#include "engine/dialect/dialect.h"
#include "engine/postgresql/connection.h"
#include "engine/sqlite/connection.h"
#include "engine/sqlite/oracle_functions.h"

#include <algorithm>
#include <limits>
#include <map>
#include <regex>
#include <sstream>
#include <stdexcept>

namespace engine::test {

namespace {

constexpr std::string_view growing[] = { "TAB_ACCOUNT_LIST", "TAB_BILL", "TAB_BILL_STATUS", "TAB_PROBLEM", "TAB_SCAN_COME", "TAB_SCAN_DISP",
    "TAB_SCAN_OTHER", "TAB_SCAN_REC", "TAB_SCAN_SEND", "TAB_SIGN", "TAB_SIGN_SUM" };
constexpr auto everyRow = std::numeric_limits<std::int64_t>::max();

void add(std::vector<std::string> &tables, const std::string &table)
{
    if (growsWithNetwork(table) && std::find(tables.begin(), tables.end(), table) == tables.end())
        tables.push_back(table);
}

double millisecondsSince(Clock::time_point start) { return std::chrono::duration<double, std::milli>(Clock::now() - start).count(); }

class SqlitePlans : public PlanReader {
public:
    explicit SqlitePlans(const std::string &path)
    {
        // Its first connection tells SQLite where memory is counted; only then another may be opened.
        m_schema = SqliteConnection(path).readTables({});
        sqlite3 *opened = nullptr;
        const int result = sqlite3_open_v2(path.c_str(), &opened, SQLITE_OPEN_READONLY, nullptr);
        m_database.reset(opened);
        if (result != SQLITE_OK)
            fail();
        registerOracleFunctions(opened);
        sqlite3_exec(opened, "pragma cache_size=-8192", nullptr, nullptr, nullptr);
        const Statement tables = prepare("select rootpage, upper(tbl_name) from sqlite_schema where rootpage > 0");
        while (sqlite3_step(tables.get()) == SQLITE_ROW)
            m_tables[sqlite3_column_int(tables.get(), 0)] = textAt(tables.get(), 1);
    }

    Plan read(const std::string &sql) override
    {
        const std::string text = sqliteText(sql, gate::check(sql, m_schema));
        Plan plan;
        readWholeTables(text, plan.wholeTables);
        const Statement lines = prepare("explain query plan " + text);
        while (sqlite3_step(lines.get()) == SQLITE_ROW)
            plan.text += textAt(lines.get(), 3) + '\n';
        const Statement statement = prepare(text);
        const auto start = Clock::now();
        int result = SQLITE_ROW;
        while ((result = sqlite3_step(statement.get())) == SQLITE_ROW)
            ++plan.rows;
        if (result != SQLITE_DONE)
            fail();
        plan.milliseconds = millisecondsSince(start);
        plan.work = sqlite3_stmt_status(statement.get(), SQLITE_STMTSTATUS_VM_STEP, 0);
        return plan;
    }

private:
    struct Close {
        void operator()(sqlite3 *database) const { sqlite3_close(database); }
    };
    struct Finalize {
        void operator()(sqlite3_stmt *statement) const { sqlite3_finalize(statement); }
    };
    using Statement = std::unique_ptr<sqlite3_stmt, Finalize>;

    [[noreturn]] void fail() const { throw std::runtime_error(sqlite3_errmsg(m_database.get())); }
    Statement prepare(const std::string &text) const
    {
        sqlite3_stmt *prepared = nullptr;
        if (sqlite3_prepare_v2(m_database.get(), text.c_str(), -1, &prepared, nullptr) != SQLITE_OK)
            fail();
        return Statement(prepared);
    }
    static std::string textAt(sqlite3_stmt *statement, int column)
    {
        const auto *const text = reinterpret_cast<const char *>(sqlite3_column_text(statement, column));
        return text ? text : "";
    }
    /// What is walked through begins with Rewind or Last on a cursor; what is looked up begins with a seek.
    void readWholeTables(const std::string &text, std::vector<std::string> &whole) const
    {
        const Statement program = prepare("explain " + text);
        std::map<int, std::string> cursors;
        while (sqlite3_step(program.get()) == SQLITE_ROW) {
            const std::string operation = textAt(program.get(), 1);
            const int cursor = sqlite3_column_int(program.get(), 2);
            if (operation == "OpenRead") {
                const auto table = m_tables.find(sqlite3_column_int(program.get(), 3));
                cursors[cursor] = table == m_tables.end() ? "" : table->second;
            } else if (operation == "Rewind" || operation == "Last") {
                add(whole, cursors[cursor]);
            }
        }
    }

    std::unique_ptr<sqlite3, Close> m_database;
    gate::Schema m_schema;
    std::map<int, std::string> m_tables; ///< by the first page of the table or of one of its indexes
};

class PostgresqlPlans : public PlanReader {
public:
    PostgresqlPlans(const std::string &url, Sequential scans)
        : m_schema(PostgresqlConnection(url).readTables({}))
        , m_connection(PQconnectdb(url.c_str()))
    {
        if (PQstatus(m_connection.get()) != CONNECTION_OK)
            throw std::runtime_error(PQerrorMessage(m_connection.get()));
        run("set default_transaction_read_only = on; set jit = off; set client_min_messages = error");
        if (scans == Sequential::Avoided)
            run("set enable_seqscan = off");
    }

    Plan read(const std::string &sql) override
    {
        const std::string text = postgresqlText(sql, gate::check(sql, m_schema), everyRow);
        const auto start = Clock::now();
        const Result told = run("explain (analyze, buffers, timing off, costs off, summary off) " + text);
        Plan plan;
        plan.milliseconds = millisecondsSince(start);
        for (int line = 0; line < PQntuples(told.get()); ++line)
            plan.text.append(PQgetvalue(told.get(), line, 0)) += '\n';
        std::smatch found;
        if (std::regex_search(plan.text, found, std::regex("actual rows=(\\d+)")))
            plan.rows = std::stoll(found[1]);
        if (std::regex_search(plan.text, found, std::regex("Buffers:[^\n]*shared[^\n]*")))
            plan.work = pagesIn(found[0]);
        readWholeTables(plan);
        return plan;
    }

private:
    struct Finish {
        void operator()(PGconn *connection) const { PQfinish(connection); }
    };
    struct Clear {
        void operator()(PGresult *result) const { PQclear(result); }
    };
    using Result = std::unique_ptr<PGresult, Clear>;

    Result run(const std::string &command) const
    {
        Result result(PQexec(m_connection.get(), command.c_str()));
        if (PQresultStatus(result.get()) != PGRES_COMMAND_OK && PQresultStatus(result.get()) != PGRES_TUPLES_OK)
            throw std::runtime_error(PQerrorMessage(m_connection.get()));
        return result;
    }
    static std::int64_t pagesIn(const std::string &line)
    {
        std::int64_t pages = 0;
        static const std::regex count("(hit|read)=(\\d+)");
        for (std::sregex_iterator found(line.begin(), line.end(), count), end; found != end; ++found)
            pages += std::stoll((*found)[2]);
        return pages;
    }
    /// A scan that ran and was bound by no condition of an index. A month's partition counts as its table.
    static void readWholeTables(Plan &plan)
    {
        static const std::regex scan(
            "(Seq Scan|Index Scan using \\w+|Index Only Scan using \\w+|Bitmap Heap Scan) on (\\w+?)(_\\d{6}|_rest)?( \\w+)? .*");
        std::istringstream text(plan.text);
        std::string open; // the table whose scan is waiting for its condition
        for (std::string line; std::getline(text, line);) {
            std::smatch found;
            const bool isNode = line.find("(actual rows=") != std::string::npos || line.find("(never executed)") != std::string::npos;
            if (line.find("Index Cond:") != std::string::npos || line.find("Recheck Cond:") != std::string::npos)
                open.clear();
            if (!isNode)
                continue;
            add(plan.wholeTables, open);
            open.clear();
            if (std::regex_search(line, found, scan) && line.find("(never executed)") == std::string::npos)
                open = gate::upperCase(found[2].str());
        }
        add(plan.wholeTables, open);
    }

    gate::Schema m_schema;
    std::unique_ptr<PGconn, Finish> m_connection;
};

} // namespace

bool growsWithNetwork(const std::string &table) { return std::binary_search(std::begin(growing), std::end(growing), table); }

std::unique_ptr<PlanReader> openPlanReader(const std::string &url, Sequential scans)
{
    constexpr std::string_view sqlite = "sqlite:";
    if (url.starts_with(sqlite))
        return std::make_unique<SqlitePlans>(url.substr(sqlite.size()));
    return std::make_unique<PostgresqlPlans>(url, scans);
}

} // namespace engine::test
