// No statement of any screen reads the history of the network: twice as many months behind the same days make no more work.

#include "demo/generator.h"
#include "tests/engine/postgresql_server.h"
#include "tests/engine/support.h"
#include "tests/plans/comparison.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace engine::test {

namespace {

/// As many parcels a day for so many days, up to the day that the cases of the screens call today.
void makeNetwork(const std::string &path, int days, bool isMonthly = false)
{
    demo::Settings settings;
    settings.path = path;
    settings.days = days;
    settings.waybills = std::uint64_t(days) * 150;
    settings.asOf = *demo::parseMoment("2026-03-15 16:30:00");
    settings.isMonthly = isMonthly;
    settings.replaces = true;
    demo::generate(settings);
}

constexpr int shortHistory = 45;
constexpr int longHistory = 110;

void expectNoneReadsHistory(const std::string &recent, const std::string &old)
{
    const double growth = growthOfDay(recent, old);
    const auto statements = compare(recent, old, Sequential::Avoided);
    EXPECT_GT(statements.size(), 150U);
    std::int64_t rows = 0;
    for (const Compared &compared : statements) {
        const std::string what = compared.statement.screen + ": " + compared.statement.sql + "\n" + compared.large.text;
        EXPECT_EQ(compared.error, "") << what;
        EXPECT_THAT(compared.large.wholeTables, testing::IsEmpty()) << what;
        EXPECT_FALSE(compared.growsTooFast(growth)) << compared.small.work << " -> " << compared.large.work << ' ' << what;
        rows += compared.large.rows;
    }
    EXPECT_GT(rows, 1000); // the statements find something to work on
}

TEST(Plans, SqliteReadsNoHistory)
{
    const TemporaryDatabase recent("");
    const TemporaryDatabase old("");
    makeNetwork(recent.path().string(), shortHistory);
    makeNetwork(old.path().string(), longHistory);
    expectNoneReadsHistory(recent.url(), old.url());
}

/// Made once for all tests.
const std::string &recentInPostgresql()
{
    static const std::string url = [] {
        auto &server = PostgresqlServer::instance();
        const std::string made = server.ownerUrl(server.makeDatabase());
        makeNetwork(made, shortHistory);
        return made;
    }();
    return url;
}

TEST(Plans, PostgresqlReadsNoHistory)
{
    auto &server = PostgresqlServer::instance();
    const std::string old = server.ownerUrl(server.makeDatabase());
    makeNetwork(old, longHistory);
    expectNoneReadsHistory(recentInPostgresql(), old);
}

TEST(Plans, PartsOfTablesHoldTheSameRowsAndHaveNoNamesOfTheirOwn)
{
    auto &server = PostgresqlServer::instance();
    const std::string name = server.makeDatabase();
    makeNetwork(server.ownerUrl(name), shortHistory, true);
    for (const Compared &compared : compare(recentInPostgresql(), server.ownerUrl(name), Sequential::Allowed)) {
        EXPECT_EQ(compared.error, "");
        EXPECT_EQ(compared.small.rows, compared.large.rows) << compared.statement.sql;
    }
    const auto reader = openEngine(server.readerUrl(name));
    EXPECT_GT(std::stoi(cell(reader->query("select count(*) from TAB_SCAN_COME"), 0, 0)), 0);
    EXPECT_EQ(outcomeOf(*reader, "select count(*) from TAB_SCAN_COME_202603").failure, Failure::Refused) << "rules would not apply to it";
    EXPECT_EQ(server.run(name, "select count(*) from TAB_SCAN_COME_REST"), "0");
}

} // namespace

} // namespace engine::test
