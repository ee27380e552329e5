#include "engine/dialect/dialect.h"
#include "support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace engine;
using namespace engine::test;
using namespace std::string_literals;
using testing::HasSubstr;

const gate::TableSet tables { "TAB_BILL", "TAB_SITE" };

/// The message of the refusal, or "accepted".
std::string refusalOf(std::string_view sql)
{
    try {
        sqliteText(sql, gate::check(sql, tables));
    } catch (const Error &error) {
        EXPECT_EQ(error.failure(), Failure::Refused);
        return error.what();
    }
    return "accepted";
}

std::string repeated(std::string_view part, std::size_t count)
{
    std::string text;
    for (std::size_t number = 0; number < count; ++number)
        text += part;
    return text;
}

TEST(Gate, RefusesHostileStatements)
{
    const auto statements = paragraphs("tests/engine/hostile.txt");
    ASSERT_GE(statements.size(), 110u);
    for (const std::string &statement : statements)
        EXPECT_THAT(refusalOf(statement), HasSubstr("语句被拒绝")) << statement;
}

TEST(Gate, RefusesBytesThatDatabasesReadInDifferentWays)
{
    const std::string cases[] = {
        "select 1 from TAB_BILL\0"s,
        "select 'a\0b' from TAB_BILL"s,
        "select 1\x01 from TAB_BILL"s,
        "select 'a\x1b' from TAB_BILL"s,
        "select 1\x0b from TAB_BILL"s,
        "select 1\x0c from TAB_BILL"s,
        "select '\x7f' from TAB_BILL"s,
        "select '\xc2\x85' from TAB_BILL"s,
        "select 1 -- comment\r from TAB_BILL"s,
        "select 1 -- comment\r, 2\n from TAB_BILL"s,
        "select 1\r from TAB_BILL"s,
        "select '\xc0\xa7' from TAB_BILL"s, // an overlong quote
        "select '\xe0\x80\xa7' from TAB_BILL"s,
        "select '\xed\xa0\x80' from TAB_BILL"s, // a surrogate
        "select '\xf4\x90\x80\x80' from TAB_BILL"s,
        "select '\xff' from TAB_BILL"s,
        "select '\xe5\x8c' from TAB_BILL"s,
        "select '\xe5\x8c"s,
        "select 1\xc2\xa0 from TAB_BILL"s, // a no-break space
        "select 1\xe2\x80\xa8 from TAB_BILL"s, // a line separator
        "\xef\xbb\xbfselect 1 from TAB_BILL"s,
    };
    for (const std::string &statement : cases)
        EXPECT_THAT(refusalOf(statement), HasSubstr("语句被拒绝")) << testing::PrintToString(statement);
}

TEST(Gate, SaysWhatIsWrongAndWhere)
{
    EXPECT_EQ(refusalOf(""), "语句被拒绝：语句是空的，请先给出一条查询语句");
    EXPECT_EQ(refusalOf(" \n-- nothing\n"), "语句被拒绝：语句是空的，请先给出一条查询语句");
    EXPECT_EQ(refusalOf("select 1 from TAB_BILL; x"), "语句被拒绝：第 1 行第 23 列有分号；一次只能执行一条查询语句，语句末尾不要写分号");
    EXPECT_EQ(refusalOf("select '北京',\n  hex(1) from TAB_BILL"), "语句被拒绝：第 2 行第 3 列的函数“hex”不在允许使用的函数之列");
    EXPECT_EQ(refusalOf("select '北京' from dUal,x"), "语句被拒绝：第 1 行第 22 列的“,”不合语法，此处应为只有 dual 一个表");
    EXPECT_EQ(refusalOf("select 1 from TAB_BIL"), "语句被拒绝：第 1 行第 15 列的表“TAB_BIL”不在允许查询的表之列");
    EXPECT_EQ(refusalOf("select 1 from TAB_BILL where"), "语句被拒绝：第 1 行第 29 列语句提前结束，此处应为列名、数值或表达式");
}

TEST(Gate, AcceptsWhatPeopleWrite)
{
    const std::string cases[] = {
        "SELECT\r\n\t* FROM tab_bill\r\n",
        "select 1 -- comment\r\n from TAB_BILL",
        "select '--' || '/*' || ';' || '\\' || ':x' || '?' from TAB_BILL",
        "select 'line\nbreak\tand tab' from TAB_BILL",
        "select 'it''s' from TAB_BILL",
        "select 1 as sum, 2 type, 3 \"class\", 4 flag, 5 as 总数 from TAB_BILL a where a.type='x'and a.class in('y')or(1=1)",
        "select/**/1/**/from/**/TAB_BILL",
        "select all BILL_CODE from TAB_BILL where not not 1=1 and BILL_CODE!='x'",
        "select a.* from (select * from ((TAB_BILL a join TAB_SITE b using (SITE_NAME)))) a",
        "select 1.5e3, .5, 1., -+1 from dual",
        "select first, last, nulls from TAB_BILL order by first nulls first",
    };
    for (const std::string &statement : cases)
        EXPECT_EQ(refusalOf(statement), "accepted") << statement;
}

TEST(Gate, LengthAndNestingAreLimited)
{
    const auto nested = [](std::size_t depth) { return "select " + repeated("(", depth) + "1" + repeated(")", depth) + " from TAB_BILL"; };
    EXPECT_EQ(refusalOf(nested(200)), "accepted");
    EXPECT_THAT(refusalOf(nested(201)), HasSubstr("200 层"));
    EXPECT_THAT(refusalOf(nested(5000)), HasSubstr("200 层"));
    EXPECT_THAT(refusalOf(nested(30000)), HasSubstr("200 层"));
    EXPECT_THAT(refusalOf("select 1 from TAB_BILL where " + repeated("exists(select 1 from TAB_BILL where ", 300)), HasSubstr("200 层"));
    EXPECT_THAT(refusalOf("select " + repeated("case when 1=1 then ", 300)), HasSubstr("200 层"));
    EXPECT_THAT(refusalOf("select " + repeated("abs(", 300)), HasSubstr("200 层"));
    EXPECT_THAT(refusalOf("select 1 from " + repeated("(", 300)), HasSubstr("200 层"));

    const std::string text = "select '" + repeated("x", gate::largestStatement) + "' from TAB_BILL";
    EXPECT_THAT(refusalOf(text), HasSubstr("65536"));
    EXPECT_EQ(refusalOf("select '" + repeated("x", gate::largestStatement - 23) + "' from TAB_BILL"), "accepted");
}

TEST(Gate, LongChainsNeedNoRecursion)
{
    const TemporaryDatabase database("create table TAB_BILL (BILL_CODE VARCHAR2(20));");
    const auto engine = openEngine(database.url());
    for (const std::string &statement : {
             "select 1" + repeated("+1", 32000) + " from TAB_BILL",
             "select 1" + repeated("/1", 12000) + " from TAB_BILL",
             "select ''" + repeated("||''", 15000) + " from TAB_BILL",
             "select 1 from TAB_BILL where " + repeated("not ", 15000) + "1=1",
             "select " + repeated("- ", 30000) + "1 from TAB_BILL",
             "select 1 from TAB_BILL where 1=1" + repeated(" and 1=1", 8000),
             "select 1 from TAB_BILL where BILL_CODE in (" + repeated("'',", 20000) + "'')",
             "select 1" + repeated(",1", 30000) + " from TAB_BILL",
             repeated("select 1 from TAB_BILL union all ", 1900) + "select 1 from TAB_BILL",
         }) {
        EXPECT_EQ(refusalOf(statement), "accepted") << statement.substr(0, 60);
        // The database runs it or says why not.
        const Outcome outcome = outcomeOf(*engine, statement);
        EXPECT_TRUE(!outcome.failed || outcome.failure == Failure::Database) << outcome.message;
    }
}

} // namespace
