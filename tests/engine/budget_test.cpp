#include "postgresql_server.h"
#include "support.h"
#include "tcp_relay.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <fstream>
#include <memory>
#include <thread>

namespace {

using namespace engine;
using namespace engine::test;
using namespace std::chrono_literals;
using testing::HasSubstr;

constexpr std::int64_t megabyte = 1024 * 1024;

// A sanitizer keeps memory of its own and makes single steps many times slower, so that only the end of a statement can be tested.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool isWatched = true;
#else
constexpr bool isWatched = false;
#endif
/// How long after its limit a statement may end.
constexpr std::chrono::milliseconds grace(std::chrono::milliseconds usual) { return isWatched ? 2min : usual; }

/// "VmHWM" or "VmRSS" of this process in bytes.
std::int64_t memory(const std::string &name)
{
    std::ifstream status("/proc/self/status");
    std::string word;
    std::int64_t kilobytes = 0;
    while (status >> word && word != name + ":") { }
    status >> kilobytes;
    return kilobytes * 1024;
}

/// What a statement took.
struct Cost {
    Outcome outcome {};
    std::chrono::milliseconds time {};
    std::int64_t highest = 0; ///< bytes above what the process had before
    std::int64_t kept = 0;
};

/// Counts rows and forgets them.
class Forgetful : public packet::BlockSink {
public:
    void begin(const std::vector<packet::Field> &) override { }
    void block(const packet::Block &, std::span<const packet::Dictionary *const>) override { }
    void end(bool) override { }
};

Cost costOf(Engine &engine, const std::string &sql, const QueryOptions &options)
{
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << "5";
    const std::int64_t before = memory("VmRSS");
    const auto start = std::chrono::steady_clock::now();
    Cost cost;
    try {
        Forgetful sink;
        engine.stream(sql, sink, options);
    } catch (const Error &error) {
        cost.outcome = { true, error.failure(), error.what(), nullptr };
    }
    cost.time = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
    cost.highest = memory("VmHWM") - before;
    cost.kept = memory("VmRSS") - before;
    return cost;
}

/// Runs a statement that may fail and expects it to stay within its limits; returns what it took.
Cost expectWithin(Engine &engine, const std::string &name, const std::string &sql, const QueryOptions &options)
{
    const auto latest = options.timeLimit + grace(1s);
    Cost cost = costOf(engine, sql, options);
    // Other programs may have held the processors.
    if (cost.time > latest)
        cost = costOf(engine, sql, options);
    EXPECT_LE(cost.time, latest) << name;
    if (!isWatched) {
        EXPECT_LE(cost.highest, std::int64_t(options.memoryLimit) * 11 / 10) << name;
        // The pages of the file stay in memory.
        EXPECT_LE(cost.kept, 80 * megabyte) << name;
    }
    std::printf("%-22s %6lld ms, high water %4lld MB, kept %3lld MB, %s\n", name.c_str(), static_cast<long long>(cost.time.count()),
        static_cast<long long>(cost.highest / megabyte), static_cast<long long>(cost.kept / megabyte),
        cost.outcome.failed ? cost.outcome.message.c_str() : "rows");
    return cost;
}

std::string repeated(std::string_view part, std::size_t count)
{
    std::string text;
    for (std::size_t number = 0; number < count; ++number)
        text += part;
    return text;
}

class Budget : public testing::Test {
protected:
    static std::string tables()
    {
        return "create table LONGS (N NUMBER(6), TEXT VARCHAR2(4000), PART VARCHAR2(4000));"
               "insert into LONGS values (1, printf('%.*c', 1000000, 'a'), printf('%.*c', 500000, 'a') || 'b');"
               "insert into LONGS values (2, printf('%.*c', 4000000, 'a'), 'x');"
               "create table NUMBERS (N NUMBER(6), TEXT VARCHAR2(4000));"
               "insert into NUMBERS with recursive n(i) as (select 1 union all select i + 1 from n where i < 2000)"
               " select i, printf('%.*c', 3900, 'x') || i from n;";
    }

    TemporaryDatabase m_database { tables() };
    std::unique_ptr<Engine> m_engine = openEngine(m_database.url(), { .connections = 2 });
};

TEST_F(Budget, HoldsWhateverTheStatement)
{
    const std::pair<const char *, std::string> attacks[] = {
        { "instr", "select instr(TEXT,PART) from LONGS" },
        { "instr backwards", "select instr(TEXT,PART,-1,3) from LONGS" },
        { "instr of each row", "select count(*) from LONGS a,NUMBERS b,NUMBERS c where instr(a.TEXT,a.PART,b.N,c.N)=7" },
        { "ltrim", "select ltrim(a.TEXT,b.PART) from LONGS a,LONGS b,NUMBERS c" },
        { "like", "select count(*) from LONGS where TEXT like '%" + repeated("a", 30000) + "b%'" },
        { "like, many %", "select count(*) from LONGS where TEXT like '" + repeated("%a_", 1000) + "b'" },
        { "regexp_instr", "select regexp_instr(TEXT,'(a|aa|aaa){1,250}b') from LONGS" },
        { "replace", "select replace(TEXT,PART,'x') from LONGS" },
        { "concatenation", "select length(" + repeated("TEXT||", 100) + "TEXT) from LONGS" },
        { "to_char", "select count(to_char(sysdate,'\"" + repeated("x", 60000) + "\"')) from NUMBERS" },
        { "order by, huge texts", "select a.TEXT from LONGS a,NUMBERS b order by a.TEXT,b.N" },
        { "order by", "select a.TEXT from NUMBERS a,NUMBERS b order by a.TEXT,b.N desc" },
        { "order by, many rows", "select a.N from NUMBERS a,NUMBERS b,NUMBERS c order by a.N,b.N,c.N" },
        { "distinct", "select distinct a.TEXT,b.TEXT from NUMBERS a,NUMBERS b" },
        { "group by", "select count(*) from NUMBERS a,NUMBERS b group by a.TEXT,b.N" },
        { "union", "select a.TEXT||'' from NUMBERS a,NUMBERS b union select TEXT||N from NUMBERS" },
        { "wide rows", "select " + repeated("TEXT,", 1500) + "TEXT from NUMBERS" },
        { "huge texts", "select a.TEXT from LONGS a,NUMBERS b" },
        { "preparing",
            "select " + repeated("N+1,", 1900) + "N from (select 1 N from dual" + repeated(" union all select 1 from dual", 490) + ")" },
        { "cross join", "select count(*) from NUMBERS a,NUMBERS b,NUMBERS c,NUMBERS d" },
    };
    const QueryOptions options { .timeLimit = 500ms };
    for (const auto &[name, sql] : attacks) {
        expectWithin(*m_engine, name, sql, options);
        // The connection serves the next statement.
        EXPECT_EQ(cell(outcomeOf(*m_engine, "select count(*) from NUMBERS").packet, 0, 0), "2000") << name;
    }
}

TEST_F(Budget, SaysWhatWasTooMuch)
{
    EXPECT_THAT(costOf(*m_engine, "select a.N from NUMBERS a,NUMBERS b order by a.N+b.N", { .memoryLimit = 8 * megabyte }).outcome.message,
        HasSubstr("内存超过了上限 8 MB"));
    EXPECT_THAT(costOf(*m_engine, "select TEXT,TEXT b,TEXT c from NUMBERS", { .memoryLimit = 32 * megabyte }).outcome.message,
        HasSubstr("超过了 4 MB"));
    const auto limit = 200ms;
    const Cost late = costOf(*m_engine, "select regexp_instr(TEXT,'(a|aa|aaa){1,250}b') from LONGS", { .timeLimit = limit });
    EXPECT_EQ(late.outcome.failure, Failure::TimeLimit);
    EXPECT_LE(late.time, limit + grace(200ms));
    // Long texts of the table itself are read.
    EXPECT_EQ(outcomeOf(*m_engine, "select TEXT from LONGS where N=2").packet->text(0, 0).size(), 4'000'000u);
}

TEST_F(Budget, OthersAreServedMeanwhile)
{
    std::atomic<bool> done = false;
    std::jthread attacker([&] {
        for (const char *sql :
            { "select ltrim(a.TEXT,b.PART) from LONGS a,LONGS b,NUMBERS c", "select a.TEXT from LONGS a,NUMBERS b order by 1" })
            costOf(*m_engine, sql, { .timeLimit = 700ms });
        done = true;
    });
    std::chrono::steady_clock::duration slowest {};
    while (!done) {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_FALSE(outcomeOf(*m_engine, "select sum(N) from NUMBERS").failed);
        slowest = std::max(slowest, std::chrono::steady_clock::now() - start);
    }
    EXPECT_LT(slowest, 500ms);
}

TEST(PostgresqlBudget, OneRowOrOneTextDoesNotFillTheMemory)
{
    auto &server = PostgresqlServer::instance();
    const TcpRelay relay(server.socketPath());
    const std::string database = server.makeDatabase("create table LONGS (N NUMBER(6), TEXT text);"
                                                     "insert into LONGS values (1, repeat('a', 100000000));"
                                                     "insert into LONGS values (2, repeat('a', 100000));"
                                                     "create table LENGTHS (N NUMBER(6), TEXT text);"
                                                     "insert into LENGTHS select i, repeat('b', i * i) from generate_series(0, 399) i;");
    const std::string urls[]
        = { "postgresql://reader@127.0.0.1:" + std::to_string(relay.port()) + "/" + database, server.readerUrl(database) };
    const std::pair<const char *, const char *> attacks[] = {
        { "one long text", "select TEXT from LONGS where N=1" },
        { "three", "select TEXT,TEXT b,TEXT c from LONGS" },
        { "concatenation", "select TEXT||TEXT from LONGS" },
        { "replace", "select replace(TEXT,'a','bbbb') from LONGS where N=2" },
        { "sort", "select a.TEXT from LONGS a,LONGS b,LONGS c,LONGS d order by a.TEXT desc" },
    };
    const QueryOptions options { .timeLimit = 3s };
    for (const std::string &url : urls) {
        const auto engine = openEngine(url);
        for (const auto &[name, sql] : attacks) {
            const Cost cost = expectWithin(*engine, name, sql, options);
            EXPECT_TRUE(cost.outcome.failed) << name;
            EXPECT_TRUE(isWatched || cost.highest < 100 * megabyte) << name << ": a row is given up when it becomes too long";
            EXPECT_EQ(outcomeOf(*engine, "select TEXT from LONGS where N=2").packet->text(0, 0).size(), 100'000u);
        }
        // The library's own buffer grows and shrinks between rows of all lengths.
        const auto many = outcomeOf(*engine, "select N,TEXT from LENGTHS order by N").packet;
        ASSERT_TRUE(many);
        for (std::size_t row = 0; row < 400; ++row)
            EXPECT_EQ(many->text(1, row).size(), row * row) << row;
    }
}

} // namespace
