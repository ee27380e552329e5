#include "engine/check/database_check.h"
#include "tests/engine/postgresql_server.h"
#include "tests/engine/support.h"

#include <gmock/gmock.h>

namespace engine::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

TEST(DatabaseCheck, NamesTheTablesAndColumnsThatScreensMiss)
{
    const std::string schema = fileText("demo/schema.sql");
    const TemporaryDatabase whole { schema };
    EXPECT_THAT(databaseFaults(*openEngine(whole.url())), ElementsAre());
    const TemporaryDatabase lacking { schema
        + "drop table TAB_AREA; alter table TAB_SITE drop column AREA_NAME; alter table TAB_SITE drop column PROVINCE;" };
    EXPECT_THAT(
        databaseFaults(*openEngine(lacking.url())), ElementsAre("表 TAB_SITE 没有列 PROVINCE、AREA_NAME", StartsWith("没有表 TAB_AREA")));
}

TEST(DatabaseCheck, NamesADatabaseThatComparesTextsByLanguage)
{
    const PostgresqlServer &server = PostgresqlServer::instance();
    server.run("postgres", "create database chinese template template0 encoding 'UTF8' locale_provider icu icu_locale 'zh' locale 'C'");
    server.run("chinese", "create table TAB_AREA (AREA_CODE text, AREA_NAME text)");
    const auto engine = openEngine(server.ownerUrl("chinese"));
    EXPECT_THAT(databaseFaults(*engine), testing::Contains(HasSubstr("--lc-collate=C")));
    server.run("chinese", "drop table TAB_AREA");
}

} // namespace
} // namespace engine::test
