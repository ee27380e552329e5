// Every statement of every screen, for readers of a branch, of a region and of the centre.

#include "demo/generator.h"
#include "server/demo_rules.h"
#include "tests/engine/postgresql_server.h"
#include "tests/engine/screen_statements.h"
#include "tests/engine/support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <regex>

namespace server::test {

using namespace engine;
using namespace engine::test;

namespace {

demo::Settings settingsFor(const std::string &path)
{
    demo::Settings settings;
    settings.waybills = 4000;
    settings.asOf = *demo::parseMoment("2026-03-15 18:00:00");
    settings.replaces = true;
    settings.path = path;
    return settings;
}

std::vector<std::string> textsOf(const std::string &url, const std::string &sql)
{
    const auto packet = openEngine(url)->query(sql);
    std::vector<std::string> texts;
    for (std::size_t row = 0; row < packet->rowCount(); ++row)
        texts.push_back(cell(packet, 0, row));
    return texts;
}

/// A condition with a reader's sites, in SQL that no code of ours has read.
std::string withSites(const std::string &condition, const std::vector<std::string> &names)
{
    std::string sites;
    for (const std::string &site : names)
        sites += (sites.empty() ? "'" : ",'") + site + "'";
    return std::regex_replace(condition, std::regex(":sites"), sites);
}

/// Deletes what is not the reader's and overwrites what is hidden. First all rows are marked: the rules look at each other's tables.
std::string leaving(const std::vector<std::string> &sites)
{
    std::string marks;
    std::string changes;
    for (const TableRule &rule : demoRules()) {
        const std::string mine = " where " + withSites(rule.condition, sites);
        marks += "create table KEPT_" + rule.table + " as select rowid as number from " + rule.table + mine + ";";
        changes += "delete from " + rule.table + " where rowid not in (select number from KEPT_" + rule.table + ");drop table KEPT_"
            + rule.table + ";";
        for (const std::string &column : rule.hidden)
            changes += "update " + rule.table + " set " + column + "='***';";
    }
    return marks + changes;
}

void runOn(const TemporaryDatabase &file, const std::string &sql)
{
    sqlite3 *database = nullptr;
    sqlite3_open(file.path().c_str(), &database);
    EXPECT_EQ(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(database);
    sqlite3_close(database);
}

/// What the screens ask, as their tests have recorded it, without conditions on a value of a row that was clicked.
std::vector<std::string> statementsOfScreens()
{
    std::vector<std::string> statements = paragraphs("tests/engine/statements.sql");
    for (const ScreenStatement &statement : screenStatements())
        statements.push_back(statement.sql);
    const std::pair<std::regex, std::string> changes[] = {
        { std::regex(" and +[\\w.]+ *= *'\\{\\w+\\}'", std::regex::icase), "" },
        { std::regex(" and +(\\w+\\.)?(PRE_OR_NEXT_STATION|scan_man|class|GOODS_TYPE|DISPATCH_OR_SEND_MAN|FAST_TYPE|SEND_SITE"
                     "|DISPATCH_SITE|rec_site|area_name|TYPE|CLASS_GROUP_NAME|CAR_NAME) *(= *'[^']*'|is null)",
              std::regex::icase),
            "" },
        { std::regex("2024-03-04"), "2026-02-20" },
        { std::regex("2024-03-05"), "2026-03-15" },
        { std::regex("(RECORD_SITE)='北京'"), "$1='北京朝阳'" },
        { std::regex("朝阳网点"), "北京朝阳" },
    };
    for (std::string &sql : statements) {
        for (const auto &[narrow, wide] : changes)
            sql = std::regex_replace(sql, narrow, wide);
    }
    std::sort(statements.begin(), statements.end());
    statements.erase(std::unique(statements.begin(), statements.end()), statements.end());
    return statements;
}

class Rows : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        s_file = std::make_unique<TemporaryDatabase>("");
        demo::generate(settingsFor(s_file->path()));
        auto &server = PostgresqlServer::instance();
        const std::string name = server.makeDatabase();
        demo::generate(settingsFor(server.ownerUrl(name)));
        s_ruled[0] = openEngine(s_file->url(), { .rules = demoRules() });
        s_ruled[1] = openEngine(server.readerUrl(name), { .rules = demoRules() });
    }
    static void TearDownTestSuite()
    {
        s_ruled[0].reset();
        s_ruled[1].reset();
        s_file.reset();
    }

    /// Some of what the screens ask is refused, with or without rules.
    static void expectSame(const Outcome &expected, const Outcome &seen, const std::string &sql)
    {
        ASSERT_EQ(seen.message, expected.message) << sql;
        if (expected.failed)
            return;
        EXPECT_EQ(sortedRows(*seen.packet), sortedRows(*expected.packet)) << sql;
    }
    /// The rows of the statements for a reader against those of a network in which there is nothing else. Returns for how many
    /// statements the rows differ from everybody's.
    static int expectOwnRows(const std::vector<std::string> &sites, const std::string &site)
    {
        const auto reader = std::make_shared<const Reader>(sites, site, "1");
        const TemporaryDatabase file("");
        std::filesystem::copy_file(s_file->path(), file.path(), std::filesystem::copy_options::overwrite_existing);
        runOn(file, leaving(sites));
        const auto left = openEngine(file.url());
        int limited = 0;
        for (const std::string &sql : statementsOfScreens()) {
            const Outcome expected = outcomeOf(*left, sql);
            for (const auto &engine : s_ruled)
                expectSame(expected, outcomeOf(*engine, sql, { .reader = reader }), sql);
            limited += !expected.failed && sortedRows(*expected.packet) != sortedRows(*s_ruled[0]->query(sql));
        }
        return limited;
    }

    static inline std::unique_ptr<TemporaryDatabase> s_file;
    static inline std::unique_ptr<Engine> s_ruled[2];
};

} // namespace

TEST_F(Rows, OfABranchAndOfARegionAreTheirOwn)
{
    const auto region = textsOf(s_file->url(), "select site_name from tab_site where finance_center='北京'");
    ASSERT_GT(region.size(), 10u);
    const int statements = int(statementsOfScreens().size());
    EXPECT_GT(expectOwnRows({ "北京朝阳" }, "北京朝阳"), statements / 2);
    EXPECT_GT(expectOwnRows(region, "北京"), 10) << "most of them ask for a site of the region";
}

TEST_F(Rows, AreCountedAsPlainSqlCountsThem)
{
    const std::vector<std::string> sites { "北京朝阳" };
    const auto branch = std::make_shared<const Reader>(sites, "北京朝阳", "1");
    for (const TableRule &rule : demoRules()) {
        const std::string count = "select count(*) from " + rule.table;
        const auto expected = textsOf(s_file->url(), count + " where " + withSites(rule.condition, sites));
        EXPECT_NE(expected, textsOf(s_file->url(), count)) << rule.table;
        for (const auto &engine : s_ruled)
            EXPECT_EQ(cell(engine->query(count, { .reader = branch }), 0, 0), expected.front()) << rule.table;
    }
}

TEST_F(Rows, OfTheCentreAreThoseWithoutRules)
{
    const auto plain = openEngine(s_file->url());
    int refused = 0;
    for (const std::string &sql : statementsOfScreens()) {
        const Outcome expected = outcomeOf(*plain, sql);
        for (const auto &engine : s_ruled)
            expectSame(expected, outcomeOf(*engine, sql), sql);
        refused += expected.failed;
    }
    EXPECT_LT(refused, 10);
}

} // namespace server::test
