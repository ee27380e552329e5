#include "demo/generator.h"
#include "postgresql_server.h"
#include "support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <memory>
#include <regex>

namespace {

using namespace engine;
using namespace engine::test;
using packet::ColumnType;

/// The same demo network in every database.
class Databases : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        demo::Settings settings;
        settings.waybills = 3000;
        settings.asOf = *demo::parseMoment("2024-03-05 18:00:00");
        settings.replaces = true;
        s_file = std::make_unique<TemporaryDatabase>("");
        settings.path = s_file->path();
        demo::generate(settings);
        // The driver manager spoils Han characters in the file's name.
        s_link = std::filesystem::temp_directory_path() / ("kelvara-" + std::to_string(getpid()) + ".db");
        std::filesystem::create_symlink(s_file->path(), s_link);
        auto &server = PostgresqlServer::instance();
        s_database = server.makeDatabase();
        settings.path = server.ownerUrl(s_database);
        demo::generate(settings);
        s_sqlite = openEngine(s_file->url());
        s_postgresql = openEngine(server.readerUrl(s_database));
        s_odbcPostgresql = openEngine(server.odbcUrl(s_database));
        s_odbcSqlite = openEngine("odbc:DRIVER=SQLite3;Database=" + s_link.string());
    }
    static void TearDownTestSuite()
    {
        s_sqlite.reset();
        s_postgresql.reset();
        s_odbcPostgresql.reset();
        s_odbcSqlite.reset();
        s_file.reset();
        std::filesystem::remove(s_link);
    }

    static std::vector<std::string> namesOf(const packet::Packet &packet)
    {
        std::vector<std::string> names;
        for (const packet::Field &field : packet.schema())
            names.push_back(field.name);
        return names;
    }
    /// The types of the columns that have a value; that of the others may be anybody's guess.
    static std::vector<ColumnType> typesOf(const packet::Packet &packet)
    {
        std::vector<ColumnType> types;
        for (std::size_t column = 0; column < packet.columnCount(); ++column) {
            for (std::size_t row = 0; row < packet.rowCount(); ++row) {
                if (!packet.isNull(column, row)) {
                    types.push_back(packet.schema()[column].type);
                    break;
                }
            }
        }
        return types;
    }
    /// The statement without the conditions that hardly a row of the demo network meets, over more days, and with waybills
    /// and sites that are there.
    static std::string widened(std::string statement)
    {
        static const std::pair<std::regex, std::string> changes[] = {
            { std::regex(" +and +(\\w+\\.)?(PRE_OR_NEXT_STATION|scan_man|class|GOODS_TYPE|DISPATCH_OR_SEND_MAN|FAST_TYPE|SEND_SITE"
                         "|DISPATCH_SITE|rec_site|area_name|TYPE|CLASS_GROUP_NAME|CAR_NAME) *(= *'[^']*'|is null)",
                  std::regex::icase),
                "" },
            { std::regex("2024-03-04 (00|12):00:00"), "2024-02-10 00:00:00" },
            { std::regex("(RECORD_SITE)='北京'"), "$1='北京朝阳'" },
            { std::regex("朝阳网点"), "北京朝阳" },
            { std::regex("'800000000001','800000000002','800000000003'"), presentCodes() },
        };
        for (const auto &[narrow, wide] : changes)
            statement = std::regex_replace(statement, narrow, wide);
        return statement;
    }
    /// Some waybills, as the list of an "in".
    static std::string presentCodes()
    {
        const auto packet = s_sqlite->query("select bill_code from tab_sign where rownum<=200");
        std::string list;
        for (std::size_t row = 0; row < packet->rowCount(); ++row)
            list += (row > 0 ? ",'" : "'") + std::string(packet->text(0, row)) + "'";
        return list;
    }
    static void expectSame(const std::string &statement, const Outcome &expected, const Outcome &actual)
    {
        ASSERT_FALSE(expected.failed) << expected.message << "\n" << statement;
        ASSERT_FALSE(actual.failed) << actual.message << "\n" << statement;
        EXPECT_EQ(namesOf(*expected.packet), namesOf(*actual.packet)) << statement;
        EXPECT_EQ(sortedRows(*expected.packet), sortedRows(*actual.packet)) << statement;
    }

    static inline std::unique_ptr<TemporaryDatabase> s_file;
    static inline std::filesystem::path s_link;
    static inline std::string s_database;
    static inline std::unique_ptr<Engine> s_sqlite;
    static inline std::unique_ptr<Engine> s_postgresql;
    static inline std::unique_ptr<Engine> s_odbcPostgresql;
    static inline std::unique_ptr<Engine> s_odbcSqlite;
};

/// The plain rows of every table; SQLite's ODBC driver brings none of the functions that other statements need.
TEST_F(Databases, HoldTheSameRowsInColumnsOfTheSameTypes)
{
    for (const char *table : { "TAB_SITE", "TAB_SITE_BASIC", "TAB_EMPLOYEE", "TAB_CUSTOMER", "TAB_SCAN_TYPE", "TAB_CLASS", "TAB_GOODS_TYPE",
             "TAB_FAST_TYPE", "TAB_AREA", "TAB_PROBLEM_TYPE", "TAB_QUOTE_DATA", "TAB_GLOBAL_VALUE", "TAB_BILL", "TAB_SCAN_REC",
             "TAB_SCAN_SEND", "TAB_SCAN_COME", "TAB_SCAN_DISP", "TAB_SCAN_OTHER", "TAB_SIGN", "TAB_SIGN_SUM", "TAB_PROBLEM",
             "TAB_BILL_STATUS", "TAB_ACCOUNT_LIST" }) {
        const std::string statement = std::string("select * from ") + table;
        const Outcome sqlite = outcomeOf(*s_sqlite, statement);
        for (Engine *const engine : { s_postgresql.get(), s_odbcPostgresql.get(), s_odbcSqlite.get() }) {
            const Outcome other = outcomeOf(*engine, statement);
            expectSame(statement, sqlite, other);
            ASSERT_FALSE(HasFatalFailure());
            ASSERT_GT(sqlite.packet->rowCount(), 0u) << table;
            EXPECT_EQ(typesOf(*sqlite.packet), typesOf(*other.packet)) << table;
        }
    }
}

TEST_F(Databases, GiveTheSameRowsForEveryStatementOfTheScreens)
{
    int fruitful = 0;
    const auto statements = paragraphs("tests/engine/statements.sql");
    for (const std::string &statement : statements) {
        const std::string wide = widened(statement);
        const Outcome expected = outcomeOf(*s_sqlite, wide);
        expectSame(wide, expected, outcomeOf(*s_postgresql, wide));
        expectSame(wide, expected, outcomeOf(*s_odbcPostgresql, wide));
        fruitful += !expected.failed && expected.packet->rowCount() > 0;
    }
    EXPECT_GE(fruitful, int(statements.size()) * 2 / 3);
}

TEST(DemoInPostgresql, LeavesNothingWhenItBreaksOffAndReplacesOnlyWhenTold)
{
    auto &server = PostgresqlServer::instance();
    const std::string name = server.makeDatabase();
    demo::Settings settings;
    settings.path = server.ownerUrl(name);
    settings.asOf = *demo::parseMoment("2024-03-05");
    settings.waybills = 25000;
    EXPECT_THROW(demo::generate(settings, [](std::string_view, std::uint64_t, std::uint64_t) { throw std::runtime_error("stop"); }),
        std::runtime_error);
    EXPECT_EQ(server.run(name, "select count(*) from pg_tables where schemaname='public'"), "0");
    settings.waybills = 10;
    demo::generate(settings);
    EXPECT_THAT([&] { demo::generate(settings); }, testing::ThrowsMessage<std::runtime_error>(testing::HasSubstr("--force")));
    settings.waybills = 20;
    settings.replaces = true;
    demo::generate(settings);
    EXPECT_EQ(server.run(name, "select count(*) from TAB_BILL_STATUS"), "20");
    EXPECT_EQ(server.run(name, "select count(*) from pg_indexes where indexname='tab_scan_come_i3'"), "1");
}

} // namespace
