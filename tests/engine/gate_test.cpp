#include "engine/dialect/dialect.h"
#include "support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

namespace {

using namespace engine;
using namespace engine::test;
using namespace std::string_literals;
using testing::HasSubstr;

const gate::Schema schema {
    { "TAB_BILL", { "BILL_CODE", "REMARK", "SITE_NAME", "TYPE", "CLASS", "FIRST", "LAST", "NULLS", "X", "Y" } },
    { "TAB_SITE", { "SITE_NAME", "AREA_NAME" } },
};

/// The message of the refusal, or "accepted".
std::string refusalOf(std::string_view sql)
{
    try {
        sqliteText(sql, gate::check(sql, schema));
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

TEST(Gate, KnowsTheColumnsOfEveryTable)
{
    const std::pair<const char *, const char *> refused[] = {
        { "select MISSING from TAB_BILL", "第 1 行第 8 列有误：“TAB_BILL”没有“MISSING”这一列" },
        { "select b.AREA_NAME from TAB_BILL b", "“b”没有“AREA_NAME”这一列" },
        { "select MISSING from TAB_BILL a,TAB_SITE b", "from 中的表都没有“MISSING”这一列" },
        { "select a.X from TAB_BILL", "“a”不是 from 中的表名或别名" },
        { "select TAB_BILL.X from TAB_BILL a", "“TAB_BILL”不是 from 中的表名或别名" },
        { "select a.* from TAB_BILL b", "“a”不是 from 中的表名或别名" },
        // the ways to call a function or to reach a row without parentheses
        { "select a.row_to_json y from TAB_BILL a", "row_to_json" },
        { "select a.count from TAB_BILL a", "count" },
        { "select a from TAB_BILL a", "“a”" },
        { "select TAB_BILL from TAB_BILL", "“TAB_BILL”" },
        { "select nvl(a,'') from TAB_BILL a", "“a”" },
        { "select max(b) from (select X from TAB_BILL) b", "“b”" },
        { "select X from TAB_BILL a order by a", "“a”" },
        { "select X as a from TAB_BILL a order by a||''", "“a”" },
        { "select count(*) from TAB_BILL a group by a", "“a”" },
        { "select X from TAB_BILL a where exists(select 1 from TAB_SITE where a is null)", "“a”" },
        { "select ctid from TAB_BILL", "ctid" },
        { "select a.xmin,a.tableoid from TAB_BILL a", "xmin" },
        { "select rowid from TAB_BILL", "rowid" },
        { "select (select ctid from TAB_BILL) from (select 1 ctid from dual) o", "ctid" },
        { "select 1 as xmin from TAB_BILL group by xmin", "xmin" },
        { "select dbms_random.value from dual", "dbms_random" },
        { "select BILL_SEQ.nextval from dual", "BILL_SEQ" },
        { "select X from TAB_BILL where X=some_pkg.some_fn", "some_pkg" },
        { "select X from TAB_BILL where X=user", "user" },
        // what the place does not see
        { "select (select max(X) m from TAB_BILL) y from TAB_SITE where m=1", "“m”" },
        { "select X as z from TAB_BILL where z=1", "“z”" },
        { "select 1 from TAB_BILL a,(select a.X from TAB_SITE) b", "“a”" },
        { "select y from (select X from TAB_BILL)", "“y”" },
        { "select b.x from (select b.SITE_NAME from TAB_SITE b) b", "“x”" },
        { "select SITE_NAME from TAB_BILL union select AREA_NAME from TAB_SITE order by AREA_NAME", "“AREA_NAME”" },
        { "select 1 from TAB_BILL a join TAB_SITE b using (MISSING)", "MISSING" },
        { "select nvl from (select nvl(X,1) from TAB_BILL)", "“nvl”" },
    };
    for (const auto &[statement, reason] : refused)
        EXPECT_THAT(refusalOf(statement), HasSubstr(reason)) << statement;
    const char *const accepted[] = {
        "select x,TAB_BILL.x,\"x\" from tab_bill",
        "select (select b.AREA_NAME from TAB_SITE b where b.SITE_NAME=a.SITE_NAME and X=1) y from TAB_BILL a",
        "select t.y,z from (select a.*,1 z from TAB_BILL a) t where t.SITE_NAME='x' order by Z,t.X",
        "select x y,count(*) n from TAB_BILL group by x having count(*)>1 order by n desc,Y",
        "select q from (select 1 q from dual union select X from TAB_BILL order by q)",
        "select a.X from TAB_BILL a where exists(select 1 from TAB_SITE where exists(select 1 from dual where a.X=AREA_NAME))",
        "select a.SITE_NAME from (TAB_BILL a join TAB_SITE b using(SITE_NAME)) natural join TAB_SITE c",
        "select X from TAB_BILL order by (select max(AREA_NAME) from TAB_SITE where SITE_NAME=X)",
    };
    for (const char *const statement : accepted)
        EXPECT_EQ(refusalOf(statement), "accepted");
}

/// `copies` sums of the column of the subquery below, `levels` times.
std::string multiplied(int levels, int copies, const std::string &innermost = "select 1 x from TAB_BILL")
{
    std::string sql = innermost;
    for (int level = 0; level < levels; ++level)
        sql = "select " + repeated("x+", std::size_t(copies - 1)) + "x x from (" + sql + ")";
    return sql;
}

TEST(Gate, ColumnsOfSubqueriesDoNotMultiplyWithoutEnd)
{
    EXPECT_EQ(refusalOf(multiplied(3, 16)), "accepted");
    EXPECT_THAT(refusalOf(multiplied(4, 16)), HasSubstr("100000 项"));
    EXPECT_THAT(refusalOf(multiplied(7, 16)), HasSubstr("100000 项"));
    EXPECT_THAT(refusalOf(multiplied(90, 2)), HasSubstr("100000 项"));
    // through stars, set operations and subqueries beside the table
    EXPECT_THAT(refusalOf(multiplied(2, 16, "select * from (select * from (" + multiplied(3, 16) + ") a) b")), HasSubstr("100000 项"));
    EXPECT_THAT(refusalOf(multiplied(3, 16, "select 1 x from dual union all " + multiplied(2, 16))), HasSubstr("100000 项"));
    EXPECT_THAT(
        refusalOf("select (select x from dual)" + repeated("+x", 20) + " from (" + multiplied(3, 16) + ")"), HasSubstr("100000 项"));
    std::string stars = "select x a from TAB_BILL";
    for (int level = 0; level < 30; ++level)
        stars = "select t.*,t.*,a from (" + stars + ") t";
    EXPECT_THAT(refusalOf(stars), HasSubstr("100000 项"));
    // What a database sums up first is not copied.
    EXPECT_EQ(refusalOf(multiplied(2, 16, "select max(x) x from (" + multiplied(3, 16) + ")")), "accepted");
}

TEST(Gate, TakesTimeInProportionToTheLength)
{
    const std::string names = repeated("x,", 28000);
    std::string columns;
    for (int number = 0; number < 4000; ++number)
        columns += "1 c" + std::to_string(number) + ",";
    std::string uses;
    for (int number = 3999; number > 0; --number)
        uses += "c" + std::to_string(number) + "+";
    std::string tables = "TAB_BILL";
    for (int number = 0; number < 63; ++number)
        tables += ",TAB_SITE t" + std::to_string(number);
    const std::string statements[] = {
        "select " + names + "x from TAB_BILL",
        "select " + uses + "c1 from (select " + columns + "1 c from dual)",
        "select 1 from " + repeated("TAB_BILL,", 7000) + "TAB_BILL",
        "select " + repeated("AREA_NAME,", 5000) + "x from " + tables,
        "select 1 from (" + repeated("select * from (", 90) + "TAB_BILL" + repeated(")", 90),
        "select x from " + repeated("(select * from ", 180) + tables + repeated(")", 180),
        repeated("select t.*,t.* from (", 150) + "TAB_BILL t" + repeated(") t", 150),
    };
    const auto start = std::chrono::steady_clock::now();
    for (const std::string &statement : statements)
        refusalOf(statement);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
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
        EXPECT_TRUE(!outcome.failed || outcome.failure == Failure::Database || outcome.failure == Failure::Refused) << outcome.message;
    }
    for (const std::string &statement : {
             "select " + repeated("(", 190) + "1" + repeated(")", 190) + " from TAB_BILL",
             "select 1 from TAB_BILL where BILL_CODE='x'" + repeated(" or BILL_CODE='x'", 2000),
         })
        EXPECT_THAT(outcomeOf(*engine, statement).message, HasSubstr("语句被拒绝：括号")) << statement.substr(0, 60);
}

} // namespace
