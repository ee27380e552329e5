#include "postgresql_server.h"
#include "support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libpq-fe.h>

#include <atomic>
#include <memory>
#include <thread>

namespace {

using namespace engine;
using namespace engine::test;
using packet::ColumnType;
using testing::HasSubstr;

/// A database of PostgreSQL, natively and through ODBC.
class Postgresql : public testing::TestWithParam<Kind> {
protected:
    std::unique_ptr<Engine> open(const EngineOptions &options = { .connections = 1 }) const
    {
        return openEngine(GetParam() == Kind::Postgresql ? m_server.readerUrl(m_name) : m_server.odbcUrl(m_name), options);
    }
    /// The first value of the only row.
    static std::string valueOf(Engine &engine, const std::string &sql)
    {
        const Outcome outcome = outcomeOf(engine, sql);
        return outcome.failed ? outcome.message : cell(outcome.packet, 0, 0);
    }
    /// Ends the sessions of the reader and waits until they are gone.
    void endSessions() const
    {
        const std::string sessions = "from pg_stat_activity where datname='" + m_name + "' and usename='reader'";
        m_server.run("postgres", "select count(pg_terminate_backend(pid)) " + sessions);
        while (m_server.run("postgres", "select count(*) " + sessions) != "0")
            std::this_thread::yield();
    }

    PostgresqlServer &m_server = PostgresqlServer::instance();
    std::string m_name = m_server.makeDatabase(R"sql(
        create table T (N NUMBER(6), TEXT VARCHAR2(20));
        insert into T values (1, 'one'), (2, 'two');
        create table BIG (N NUMBER(6));
        insert into BIG select * from generate_series(1, 3000);
        create function set_path() returns text language sql as $$ select set_config('search_path', 'nowhere', false) $$;
        create view TRAP as select set_path() as PATH;
        create function write_row() returns int language sql as $$ insert into public.T values (3, 'three') returning 3 $$;
        create view WRITING as select write_row() as N;
    )sql");
};

/// Views stand for whatever a statement might reach: the gate lets no function of theirs be called by name.
TEST_P(Postgresql, NothingIsWrittenAndNoSettingOutlivesItsStatement)
{
    const auto engine = open();
    EXPECT_THAT(valueOf(*engine, "select N from WRITING"), HasSubstr("read-only"));
    EXPECT_EQ(m_server.run(m_name, "select count(*) from T"), "2");
    EXPECT_EQ(valueOf(*engine, "select PATH from TRAP"), "nowhere");
    EXPECT_EQ(valueOf(*engine, "select count(*) from T"), "2");
    // Whoever gets round the gate and the transaction is still an account that may only read.
    EXPECT_THROW(
        m_server.run(m_name, "set role reader; set transaction read write; insert into T values (3, 'three')"), std::runtime_error);
}

TEST_P(Postgresql, ASessionLostInThePoolIsReplaced)
{
    const auto engine = open();
    EXPECT_EQ(valueOf(*engine, "select TEXT from T where N=1"), "one");
    endSessions();
    EXPECT_EQ(valueOf(*engine, "select TEXT from T where N=2"), "two");
}

TEST_P(Postgresql, ASessionLostWhileItWorksIsReportedAndReplaced)
{
    const auto engine = open();
    std::atomic<bool> ended = false;
    std::jthread killer([&] {
        while (m_server.run(
                   "postgres", "select count(*) from pg_stat_activity where query like '%BIG%' and usename='reader' and state='active'")
            == "0")
            std::this_thread::yield();
        endSessions();
        ended = true;
    });
    const Outcome outcome = outcomeOf(*engine, "select count(*) from BIG a,BIG b,BIG c where a.N+b.N+c.N<0");
    killer.join();
    EXPECT_TRUE(outcome.failed && ended);
    EXPECT_EQ(outcome.failure, Failure::Unavailable) << outcome.message;
    EXPECT_EQ(valueOf(*engine, "select TEXT from T where N=2"), "two");
}

TEST_P(Postgresql, LongTextsAreWhole)
{
    const std::string longText = "repeat('快件',6000)";
    m_server.run(m_name, "create table NOTES (N numeric(6), NOTE text, TAIL varchar(9))");
    m_server.run(m_name, "insert into NOTES values (1,'short','a'),(2," + longText + ",'b'),(3,null,'c')");
    m_server.run(m_name, "insert into NOTES select n,'x','d' from generate_series(4,3000) n");
    const auto engine = open();
    const auto packet = outcomeOf(*engine, "select NOTE,TAIL,N from NOTES order by N").packet;
    ASSERT_TRUE(packet);
    EXPECT_EQ(packet->rowCount(), 3000u);
    EXPECT_EQ(cell(packet, 0, 0) + cell(packet, 1, 0), "shorta");
    EXPECT_EQ(packet->text(0, 1).size(), 6000 * std::string_view("快件").size());
    EXPECT_EQ(cell(packet, 1, 1), "b");
    EXPECT_EQ(cell(packet, 0, 2) + cell(packet, 1, 2), "nullc");
    EXPECT_EQ(cell(packet, 2, 2999), "3000");
}

TEST_P(Postgresql, TextsDoNotFillTheMemory)
{
    m_server.run(m_name, "create table HUGE (NOTE varchar(8000))");
    m_server.run(m_name, "insert into HUGE select repeat('x', 8000) from generate_series(1, 10)");
    const auto engine = open();
    const Outcome outcome = outcomeOf(*engine, "select a.NOTE a,a.NOTE b,a.NOTE c,a.NOTE d,a.NOTE e from HUGE a,BIG b,BIG c");
    EXPECT_EQ(outcome.failure, Failure::Database);
    EXPECT_THAT(outcome.message, HasSubstr("32 MB"));
    EXPECT_EQ(valueOf(*engine, "select TEXT from T where N=2"), "two");
}

INSTANTIATE_TEST_SUITE_P(By, Postgresql, testing::Values(Kind::Postgresql, Kind::OdbcPostgresql), nameOf);

TEST(PostgresqlTypes, ValuesOfEveryTypeAreRead)
{
    auto &server = PostgresqlServer::instance();
    const std::string name = server.makeDatabase(R"sql(
        create table V (I2 smallint, I4 int, I8 bigint, F4 real, F8 float8, N numeric, N20 numeric(20), M numeric(30,10), D timestamp,
            DAY pg_catalog.date, B boolean, C char(3), E varchar(5), ORA oracle.date,
            N38 numeric);
        insert into V values (-2, -40000, -5000000000, 0.5, 1e300, -1234567.8900, 12345678901234567890, -0.0000000001,
            '1969-12-31 23:59:59.9', '2024-02-29', true, 'a', '', '2024-03-05 10:07:59', 1),
            (1, 1, 1, 1, 1, 1, 1, 12345678901234567890.0123456789, '0001-01-01', '1970-01-01', false, '', 'x', null,
                99999999999999999999999999999999999999);
        create table W (U uuid, T timestamptz, N numeric(10,2));
        insert into W values ('00000000-0000-0000-0000-000000000001', '2024-03-05 10:07:59.5', 1.50);
        create table WRONG (N numeric, D timestamp);
        insert into WRONG values ('NaN', 'infinity');
    )sql");
    const auto engine = openEngine(server.readerUrl(name));
    const Outcome outcome = outcomeOf(*engine, "select * from V order by I2");
    ASSERT_FALSE(outcome.failed) << outcome.message;
    const auto v = outcome.packet;
    const std::string rows[2][15] = {
        { "-2", "-40000", "-5000000000", "0.5", "1e+300", "-1234567.89", "12345678901234567890", "-0.0000000001", "1969-12-31 23:59:59",
            "2024-02-29 00:00:00", "1", "a  ", "null", "2024-03-05 10:07:59", "1" },
        { "1", "1", "1", "1", "1", "1", "1", "12345678901234567890.0123456789", "0001-01-01 00:00:00", "1970-01-01 00:00:00", "0", "   ",
            "x", "null", "99999999999999999999999999999999999999" },
    };
    for (std::size_t row = 0; row < 2; ++row) {
        for (std::size_t column = 0; column < v->columnCount(); ++column)
            EXPECT_EQ(cell(v, column, row), rows[row][column]) << v->schema()[column].name;
    }
    // Types that have no binary form with us come as text.
    const auto w = outcomeOf(*engine, "select * from W").packet;
    ASSERT_TRUE(w);
    EXPECT_EQ(cell(w, 0, 0), "00000000-0000-0000-0000-000000000001");
    EXPECT_EQ(w->schema()[1].type, ColumnType::Timestamp);
    EXPECT_EQ(cell(w, 2, 0), "1.5");
    EXPECT_EQ(outcomeOf(*engine, "select N from WRONG").failure, Failure::Database);
    EXPECT_EQ(outcomeOf(*engine, "select D from WRONG").failure, Failure::Database);
    EXPECT_EQ(cell(outcomeOf(*engine, "select count(*) from V").packet, 0, 0), "2");
}

TEST(PostgresqlDialect, NamesAndPatternsMeanWhatTheyMeanInOracle)
{
    auto &server = PostgresqlServer::instance();
    const auto engine = openEngine(server.readerUrl(server.makeDatabase(R"sql(
        create table WORDS ("user" VARCHAR2(9), "day" NUMBER(3), PATH VARCHAR2(9));
        insert into WORDS values ('me', 5, 'a\b%');
    )sql")));
    const std::pair<const char *, const char *> cases[] = {
        { "select user from WORDS", "me" },
        { "select w.USER||w.\"USER\" from WORDS w", "meme" },
        { "select DAY year from WORDS order by year", "5" },
        { "select \"Day\" from (select DAY as \"Day\" from WORDS)", "5" },
        { "select count(*) from WORDS where PATH like 'a\\b%'", "1" },
        { "select count(*) from WORDS where PATH like 'a\\b!%' escape '!'", "1" },
        { "select count(*) from WORDS where PATH like 'a\\_%'", "1" },
        { "select count(*) from (select 1 n from WORDS) a,(select 2 n from WORDS)", "1" },
        { "select decode(DAY,1,'a',5,'b')||decode(user,'me',DAY,0)||decode(null,null,'n') from WORDS", "b5n" },
        { "select max(DAY)/2 from WORDS -- a comment at the end", "2.5" },
    };
    for (const auto &[sql, expected] : cases) {
        const Outcome outcome = outcomeOf(*engine, sql, { .rowLimit = 10 });
        EXPECT_EQ(outcome.failed ? outcome.message : cell(outcome.packet, 0, 0), expected) << sql;
    }
}

TEST(Opening, WhatCannotBeReachedIsUnavailable)
{
    for (const char *url :
        { "postgresql://nobody@/none?host=/nowhere", "postgresql://a b", "odbc:DSN=无此数据源", "odbc:DRIVER=NoSuchDriver" }) {
        try {
            openEngine(url);
            ADD_FAILURE() << url;
        } catch (const Error &error) {
            EXPECT_EQ(error.failure(), Failure::Unavailable) << url;
        }
    }
}

} // namespace
