#include "support.h"

#include "packet/stream_reader.h"
#include "packet/stream_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <thread>

namespace {

using namespace engine;
using namespace engine::test;
using namespace std::chrono_literals;
using testing::HasSubstr;

/// A billion rows, counted one by one: it runs until it is stopped.
constexpr const char *endless = "select count(*) from NUMBERS a,NUMBERS b,NUMBERS c where a.N+b.N+c.N<0";

class Query : public testing::TestWithParam<Kind> {
protected:
    static std::string numbers()
    {
        std::string sql = "create table NUMBERS (N NUMBER(6)); create table SECRET (X VARCHAR2(9)); begin;";
        for (int number = 0; number < 1000; ++number)
            sql += "insert into NUMBERS values (" + std::to_string(number) + ");";
        return sql + "commit;";
    }

    AnyDatabase m_database { GetParam(), numbers() };
};

TEST_P(Query, StopsWithinMilliseconds)
{
    const auto engine = openEngine(m_database.url());
    std::stop_source source;
    std::jthread stopper([&source] {
        std::this_thread::sleep_for(50ms);
        source.request_stop();
    });
    const Outcome outcome = outcomeOf(*engine, endless, { .stop = source.get_token() });
    EXPECT_TRUE(outcome.failed);
    EXPECT_EQ(outcome.failure, Failure::Cancelled);
    EXPECT_THAT(outcome.message, HasSubstr("查询已取消"));
    // The connection serves the next statement.
    EXPECT_EQ(cell(outcomeOf(*engine, "select count(*) from NUMBERS").packet, 0, 0), "1000");
}

TEST_P(Query, EndsAtTheTimeLimit)
{
    const auto engine = openEngine(m_database.url());
    const Outcome outcome = outcomeOf(*engine, endless, { .timeLimit = 30ms });
    EXPECT_TRUE(outcome.failed);
    EXPECT_EQ(outcome.failure, Failure::TimeLimit);
}

TEST_P(Query, TheRowLimitCutsAndSaysSo)
{
    const auto engine = openEngine(m_database.url());
    const auto cut = outcomeOf(*engine, "select N from NUMBERS", { .rowLimit = 999 }).packet;
    EXPECT_EQ(cut->rowCount(), 999u);
    EXPECT_TRUE(cut->truncated());
    const auto whole = outcomeOf(*engine, "select N from NUMBERS", { .rowLimit = 1000 }).packet;
    EXPECT_EQ(whole->rowCount(), 1000u);
    EXPECT_FALSE(whole->truncated());
}

TEST_P(Query, ReportsItsProgress)
{
    const auto engine = openEngine(m_database.url());
    std::vector<std::int64_t> reports;
    const QueryOptions options { .progress = [&reports](std::int64_t rows) { reports.push_back(rows); } };
    ASSERT_FALSE(outcomeOf(*engine, "select a.N from NUMBERS a,NUMBERS b where b.N<20", options).failed);
    EXPECT_THAT(reports, testing::ElementsAre(8192, 16384, 20000));
}

TEST_P(Query, MoreQueriesThanConnectionsWaitTheirTurn)
{
    const auto engine = openEngine(m_database.url(), { .connections = 1 });
    std::stop_source source;
    std::atomic<bool> running = false;
    std::jthread holder([&] {
        const QueryOptions options { .stop = source.get_token(), .progress = [&running](std::int64_t) { running = true; } };
        outcomeOf(*engine, "select a.N from NUMBERS a,NUMBERS b,NUMBERS c", options);
    });
    while (!running)
        std::this_thread::yield();
    const Outcome late = outcomeOf(*engine, "select N from NUMBERS", { .timeLimit = 20ms });
    EXPECT_EQ(late.failure, Failure::TimeLimit);
    std::stop_source impatient;
    impatient.request_stop();
    EXPECT_EQ(outcomeOf(*engine, "select N from NUMBERS", { .stop = impatient.get_token() }).failure, Failure::Cancelled);
    std::jthread releaser([&source] {
        std::this_thread::sleep_for(20ms);
        source.request_stop();
    });
    EXPECT_FALSE(outcomeOf(*engine, "select N from NUMBERS").failed);
}

TEST_P(Query, SeveralThreadsShareAnEngine)
{
    const auto engine = openEngine(m_database.url(), { .connections = 2 });
    std::atomic<int> right = 0;
    {
        std::vector<std::jthread> threads;
        for (int thread = 0; thread < 6; ++thread) {
            threads.emplace_back([&] {
                for (int round = 0; round < 20; ++round)
                    right += cell(outcomeOf(*engine, "select sum(N) from NUMBERS").packet, 0, 0) == "499500";
            });
        }
    }
    EXPECT_EQ(right, 120);
}

TEST_P(Query, OnlyListedTablesMayBeRead)
{
    const auto engine = openEngine(m_database.url(), { .tables = { "numbers" } });
    EXPECT_FALSE(outcomeOf(*engine, "select N from Numbers").failed);
    const Outcome outcome = outcomeOf(*engine, "select X from SECRET");
    EXPECT_EQ(outcome.failure, Failure::Refused);
    EXPECT_THAT(outcome.message, HasSubstr("SECRET"));
}

TEST_P(Query, DatabaseErrorsCarryItsOwnWords)
{
    const auto engine = openEngine(m_database.url());
    const Outcome outcome = outcomeOf(*engine, "select to_number('twelve') from NUMBERS");
    EXPECT_EQ(outcome.failure, Failure::Database);
    EXPECT_THAT(outcome.message,
        testing::AllOf(HasSubstr("数据库报告错误"), testing::ContainsRegex("ORA-01722|invalid input syntax for type numeric")));
}

/// Counts what it gets and gives up after some blocks.
class Counter : public packet::BlockSink {
public:
    void begin(const std::vector<packet::Field> &schema) override { columns = schema.size(); }
    void block(const packet::Block &block, std::span<const packet::Dictionary *const>) override
    {
        if (++blocks > mostBlocks)
            throw std::runtime_error("the reader is gone");
        rows += block.rows;
    }
    void end(bool isTruncated) override
    {
        ended = true;
        truncated = isTruncated;
    }

    int mostBlocks = 1000;
    int blocks = 0;
    std::size_t columns = 0;
    std::size_t rows = 0;
    bool ended = false;
    bool truncated = false;
};

TEST_P(Query, StreamsItsRows)
{
    const auto engine = openEngine(m_database.url());
    const char *const sql = "select a.N,a.N*0.5 HALF from NUMBERS a,NUMBERS b where b.N<100";
    Counter all;
    engine->stream(sql, all);
    EXPECT_EQ(all.columns, 2u);
    EXPECT_EQ(all.rows, 100'000u);
    EXPECT_TRUE(all.ended && !all.truncated);
    Counter cut;
    engine->stream(sql, cut, { .rowLimit = 20'000 });
    EXPECT_EQ(cut.rows, 20'000u);
    EXPECT_TRUE(cut.ended && cut.truncated);
    Counter quitter;
    quitter.mostBlocks = 2;
    EXPECT_THROW(engine->stream(sql, quitter), std::runtime_error);
    EXPECT_FALSE(quitter.ended);
    // Over the wire it is the result that a query brings.
    packet::StreamReader reader;
    packet::StreamWriter writer([&reader](std::span<const std::byte> message) { reader.feed(message); });
    engine->stream(sql, writer);
    const packet::PacketPtr received = reader.finish();
    const packet::PacketPtr whole = engine->query(sql);
    ASSERT_EQ(received->rowCount(), whole->rowCount());
    for (std::size_t row = 0; row < whole->rowCount(); ++row)
        ASSERT_EQ(cell(received, 0, row) + cell(received, 1, row), cell(whole, 0, row) + cell(whole, 1, row));
    Counter none;
    EXPECT_THROW(engine->stream("select MISSING from NUMBERS", none), Error);
    EXPECT_FALSE(none.ended);
}

TEST(SqliteFile, ValuesThatDoNotFitTheirColumnAreReported)
{
    const TemporaryDatabase database("create table T (PIECE NUMBER(6), DAY DATE);"
                                     "insert into T values ('three', null), (null, '2024-02-30');");
    const auto engine = openEngine(database.url());
    EXPECT_THAT(outcomeOf(*engine, "select PIECE from T").message, testing::AllOf(HasSubstr("PIECE"), HasSubstr("three")));
    EXPECT_THAT(outcomeOf(*engine, "select DAY from T").message, HasSubstr("2024-02-30"));
}

TEST(SqliteFile, RowsKeepTheirOrderAndABadOneIsFoundHoweverLateItComes)
{
    std::string sql = "create table T (N NUMBER(9), TEXT VARCHAR2(40), MIXED NUMBER(9)); begin;";
    for (int row = 0; row < 30000; ++row)
        sql += "insert into T values (" + std::to_string(row) + ",'row " + std::to_string(row * 7) + "'," + (row < 29999 ? "1" : "'x'")
            + ");";
    const TemporaryDatabase database(sql + "commit;");
    const auto engine = openEngine(database.url());
    const auto packet = outcomeOf(*engine, "select N,TEXT from T").packet;
    ASSERT_EQ(packet->rowCount(), 30000u);
    for (std::size_t row = 0; row < 30000; row += 997) {
        EXPECT_EQ(packet->integer(0, row), std::int64_t(row));
        EXPECT_EQ(packet->text(1, row), "row " + std::to_string(row * 7));
    }
    EXPECT_THAT(outcomeOf(*engine, "select N,TEXT,MIXED from T").message, HasSubstr("MIXED"));
}

TEST(SqliteFile, WhatIsNoDatabaseIsUnavailable)
{
    const auto openingOf = [](const std::string &url) {
        try {
            openEngine(url);
        } catch (const Error &error) {
            EXPECT_EQ(error.failure(), Failure::Unavailable);
            return std::string(error.what());
        }
        return std::string("opened");
    };
    EXPECT_THAT(openingOf("sqlite:/nowhere/快件.db"), HasSubstr("/nowhere/快件.db"));
    EXPECT_THAT(openingOf("mysql:host"), HasSubstr("无法识别数据库地址"));
    const TemporaryDatabase database("");
    std::ofstream(database.path(), std::ios::trunc) << "This is certainly not a database, and long enough to be read as one.";
    EXPECT_THAT(openingOf(database.url()), HasSubstr(database.path().string()));
}

INSTANTIATE_TEST_SUITE_P(On, Query, testing::Values(Kind::Sqlite, Kind::Postgresql, Kind::OdbcPostgresql), nameOf);

} // namespace
