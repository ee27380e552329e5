#include "engine/dialect/dialect.h"
#include "support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>

namespace {

using namespace engine;
using namespace engine::test;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

/// Waybills of 东 and 西, one from each to the other, and what lies beside them. The note of 西's own is no number.
constexpr auto tables = R"(
create table TAB_BILL (BILL_CODE VARCHAR2(20) NOT NULL, SEND_SITE VARCHAR2(50), DISPATCH_SITE VARCHAR2(50), PHONE VARCHAR2(30),
    FEE NUMBER(10,2), MADE DATE, NOTE VARCHAR2(20), "TYPE" VARCHAR2(9));
insert into TAB_BILL values ('1','东','东','111',1.50,'2024-03-01 00:00:00','10','a');
insert into TAB_BILL values ('2','东','西','222',2.50,'2024-03-02 00:00:00','20','a');
insert into TAB_BILL values ('3','西','东','333',3.50,'2024-03-03 00:00:00','30','b');
insert into TAB_BILL values ('4','西','西','444',4.50,'2024-03-04 00:00:00','SECRET','b');
insert into TAB_BILL values ('5','O''Hare','O''Hare','555',5.50,'2024-03-05 00:00:00','50','b');
create unique index TAB_BILL_P on TAB_BILL (BILL_CODE);
create table TAB_STATUS (BILL_CODE VARCHAR2(20), POS VARCHAR2(50));
insert into TAB_STATUS values ('1','p1'); insert into TAB_STATUS values ('2','p2'); insert into TAB_STATUS values ('4','p4');
create table TAB_SITE (SITE_NAME VARCHAR2(50));
insert into TAB_SITE values ('东'); insert into TAB_SITE values ('西');)";

// "TYPE" is small in PostgreSQL, where names without quotes are.
std::string tablesFor(Kind kind)
{
    std::string sql = tables;
    if (kind != Kind::Sqlite)
        sql.replace(sql.find("\"TYPE\""), 6, "type");
    return sql;
}

const std::vector<TableRule> rules {
    { .table = "tab_bill", .condition = "send_site in (:sites) or dispatch_site in (:sites)" },
    { .table = "TAB_BILL", .hidden = { "phone" } },
    { .table = "TAB_STATUS", .condition = "bill_code in (select b.bill_code from tab_bill b where b.send_site = :site)" },
};

QueryOptions as(const std::vector<std::string> &sites, const std::string &site = "东")
{
    return { .reader = std::make_shared<const Reader>(sites, site, "E1") };
}

class Rules : public testing::TestWithParam<Kind> {
protected:
    /// The rows, sorted, with a bar behind each value.
    std::vector<std::string> rows(std::string_view sql, const QueryOptions &options = as({ "东" }))
    {
        const Outcome outcome = outcomeOf(*m_engine, sql, options);
        return outcome.failed ? std::vector { outcome.message } : sortedRows(*outcome.packet);
    }
    std::unique_ptr<Engine> open(const std::vector<TableRule> &some) const { return openEngine(m_database.url(), { .rules = some }); }
    std::string faultOf(const TableRule &rule) const
    {
        try {
            open({ rule });
            return "no fault";
        } catch (const Error &error) {
            return (error.failure() == Failure::Unavailable ? "" : "not Unavailable: ") + std::string(error.what());
        }
    }

    AnyDatabase m_database { GetParam(), tablesFor(GetParam()) };
    std::unique_ptr<Engine> m_engine = open(rules);
};

INSTANTIATE_TEST_SUITE_P(On, Rules, testing::Values(Kind::Sqlite, Kind::Postgresql, Kind::OdbcPostgresql), nameOf);

/// However a statement comes to a table, it finds the reader's rows.
TEST_P(Rules, HoldWhereverATableStands)
{
    const char *const statements[] = {
        "select bill_code from tab_bill",
        "select TAB_BILL.BILL_CODE from Tab_Bill",
        "select x.bill_code from \"TAB_BILL\" x",
        "select \"TAB_BILL\".bill_code from \"TAB_BILL\" where \"TAB_BILL\".note is not null",
        "select tab_bill.bill_code from tab_bill, tab_site where tab_bill.send_site = '东' and site_name = '东' union "
        "select b.bill_code from tab_site s, (tab_site join tab_bill b on 1=1) where s.site_name='东' and b.send_site <> '东'",
        "select bill_code from (select * from (select tab_bill.* from tab_bill) x where 1=1) y",
        "select a.bill_code from tab_bill/* b */a -- where\n join tab_bill \"b\" using (bill_code)",
        "select bill_code from tab_bill natural join (select bill_code from tab_bill)",
        "select bill_code from tab_bill union all select bill_code from tab_bill minus select bill_code from tab_bill where bill_code='4'",
        "select distinct (select max(b.bill_code) from tab_bill b where b.bill_code=a.bill_code) from tab_bill a",
        "select a.bill_code from tab_bill a where exists (select 1 from tab_bill where bill_code = a.bill_code and rownum = 1)",
        "select send_site.bill_code from tab_bill send_site where '东' in (send_site.send_site, send_site.dispatch_site)",
        "select /*+ index(a, P) */ b.bill_code from tab_site a cross join tab_bill b where a.site_name = '东'",
        "select bill_code from tab_bill a where \"TYPE\" in (select type from tab_bill) order by a.made desc",
    };
    for (const char *const statement : statements)
        EXPECT_THAT(rows(statement), ElementsAre("'1'|", "'2'|", "'3'|")) << statement;
    EXPECT_THAT(rows("select s.site_name,b.bill_code from tab_site s left join tab_bill b on b.send_site=s.site_name and b.note='SECRET'"),
        ElementsAre("'东'|null|", "'西'|null|"));
    EXPECT_THAT(rows("select count(*),sum(fee) from tab_bill"), ElementsAre("3|7.5|"));
    EXPECT_THAT(rows("select pos from tab_status"), ElementsAre("'p1'|", "'p2'|"));
    EXPECT_EQ(rows("select bill_code from tab_bill", {}).size(), 5u) << "without a reader no rule applies";
}

TEST_P(Rules, LeaveTheColumnsAsTheyAre)
{
    const std::string star = "select * from tab_bill where bill_code='1'";
    const auto plain = m_engine->query(star);
    const auto ruled = m_engine->query(star, as({ "东" }));
    ASSERT_EQ(ruled->columnCount(), plain->columnCount());
    for (std::size_t column = 0; column < plain->columnCount(); ++column) {
        EXPECT_EQ(ruled->schema()[column].name, plain->schema()[column].name);
        EXPECT_EQ(ruled->schema()[column].type, plain->schema()[column].type);
        EXPECT_EQ(cell(ruled, column, 0), plain->schema()[column].name == "PHONE" ? "***" : cell(plain, column, 0));
    }
}

/// The mask is all that there is of a hidden column: no condition and no order finds out more.
TEST_P(Rules, HideColumns)
{
    EXPECT_THAT(rows("select bill_code from tab_bill where phone='111'"), ElementsAre());
    EXPECT_THAT(rows("select bill_code from tab_bill where phone like '1%' or instr(phone,'1')>0 or length(phone)<>3"), ElementsAre());
    EXPECT_THAT(rows("select phone,count(*) from tab_bill group by phone having max(phone)=min(phone)"), ElementsAre("'***'|3|"));
    EXPECT_THAT(rows("select s.site_name,b.phone from tab_site s left join tab_bill b on b.send_site=s.site_name and b.phone='***' "
                     "and b.dispatch_site='东'"),
        ElementsAre("'东'|'***'|", "'西'|'***'|"));
    EXPECT_THAT(rows("select phone from tab_bill union select note from tab_bill where note='10'"), ElementsAre("'***'|", "'10'|"));
    const auto engine = open({ { .table = "TAB_BILL", .hidden = { "FEE", "MADE", "PHONE" } } });
    EXPECT_THAT(
        sortedRows(*engine->query("select sum(fee) s,max(made) m,count(fee) c,max(nvl(fee,-1)) n,max(phone) p from tab_bill", as({}))),
        ElementsAre("null|null|0|-1|'***'|"));
}

TEST_P(Rules, TakeValuesForWhatTheyAre)
{
    const std::string codes = "select bill_code from tab_bill";
    EXPECT_THAT(rows(codes, as({ "O'Hare" })), ElementsAre("'5'|"));
    EXPECT_THAT(rows(codes, as({ "') or ('1'='1", "\\", "\\' or 1=1 --", "/*", "东" })), ElementsAre("'1'|", "'2'|", "'3'|"));
    EXPECT_THAT(rows("select pos from tab_status", as({}, "西")), ElementsAre("'p4'|"));
    for (const auto &nobody : { as({}), as({ "" }, ""), as({ "没有" }, "' or ''='") }) {
        EXPECT_THAT(rows(codes, nobody), ElementsAre());
        EXPECT_THAT(rows("select pos from tab_status where 1=1 or bill_code='1'", as({}, "")), ElementsAre());
    }
    std::vector<std::string> many(3000, "网点");
    many.push_back("东");
    EXPECT_THAT(rows(codes + " a where exists (select 1 from tab_bill where bill_code=a.bill_code)", as(many)), testing::SizeIs(3));
    for (const std::string &wrong : { std::string("东\0'", 5), std::string("\xFF"), std::string("a\x1b"), std::string(401, 'x') })
        EXPECT_THAT(rows(codes, as({ wrong })), ElementsAre(HasSubstr("账号的网点名称"))) << wrong;
}

/// Whether a statement fails, and with which words, depends on the reader's rows alone, though databases look at the rows of others when
/// a condition of the statement is cheaper than the rule, or an index has all that it needs.
TEST_P(Rules, DoNotTellByFailing)
{
    const auto some = as({ "东", "南", "北", "中" });
    for (const char *const condition : { "1/(fee-4.5)<>0", "bill_code>'0' and 1/(case bill_code when '4' then 0 else 1 end)=1",
             "to_number(note)>0", "8/(case when note='SECRET' then 0 else 1 end)=8" })
        EXPECT_THAT(rows("select bill_code from tab_bill where " + std::string(condition), some), ElementsAre("'1'|", "'2'|", "'3'|"))
            << condition;
    EXPECT_THAT(rows("select bill_code from tab_bill where to_number(note)>0", as({ "西" })), ElementsAre(HasSubstr("数据库报告错误")));
}

/// Rows that have been handed out cannot be taken back; then no more is told than that there was a failure.
TEST_P(Rules, DoNotTellByFailingLate)
{
    class Counter : public packet::BlockSink {
    public:
        void begin(const std::vector<packet::Field> &) override { ++begun; }
        void block(const packet::Block &block, std::span<const packet::Dictionary *const>) override { rows += block.rows; }
        void end(bool) override { }
        int begun = 0;
        std::size_t rows = 0;
    } counter;
    std::string sql = "select to_number(a.note) from (select note from tab_bill order by bill_code) a";
    for (int number = 0; number < 9; ++number)
        sql += ",tab_bill b" + std::to_string(number);
    try {
        m_engine->stream(sql, counter, as({ "西" }));
        FAIL() << "SECRET is no number";
    } catch (const Error &error) {
        EXPECT_EQ(counter.begun > 0, std::string(error.what()).starts_with("查询中途出错")) << error.what();
        EXPECT_LE(counter.begun, 1);
        if (GetParam() == Kind::Sqlite) {
            EXPECT_GT(counter.rows, 0u);
        }
    }
}

/// A statement of many tables, each with many sites, is refused before it is written out.
TEST_P(Rules, BoundWhatAStatementBecomes)
{
    std::string sql = "select bill_code from tab_bill";
    for (int number = 0; number < 1500; ++number)
        sql += " union all select bill_code from tab_bill";
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_THAT(rows(sql, as(std::vector<std::string>(1000, "网点"))), ElementsAre(HasSubstr("数据范围限定后，语句超过 100000 项")));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(200));
}

TEST_P(Rules, ThatAreWrongMakeTheDatabaseUnavailable)
{
    const auto bill
        = [](const std::string &condition) { return TableRule { .table = "TAB_BILL", .condition = condition, .place = "第 7 行" }; };
    const std::pair<TableRule, std::string> cases[] = {
        { bill("sender = :site"), "表 TAB_BILL 的行规则（第 7 行）不能用：条件第 1 行第 1 列有误：“TAB_BILL”没有“sender”这一列" },
        { bill("send_site in (:sites) or"), "语句提前结束" },
        { bill("send_site = :sites"), "只能写作 in (:sites)" },
        { bill("send_site not in (:sites)"), "只能写作 in (:sites)" },
        { bill("1=1) or (1=1"), "条件到此结束" },
        { bill("1=1 union select 1 from tab_bill"), "条件到此结束" },
        { bill("exists (select 1 from pg_user)"), "PG_USER" },
        { bill("own_function(send_site) = 1"), "own_function" },
        { bill("count(*) > 1"), "汇总函数" },
        { bill("rownum < 5"), "rownum" },
        { { .table = "TAB_NONE", .condition = "1=1" }, "没有这个表" },
        { { .table = "TAB_BILL", .hidden = { "NONE" } }, "没有“NONE”这一列" },
    };
    for (const auto &[rule, message] : cases)
        EXPECT_THAT(faultOf(rule), AllOf(testing::StartsWith("表 TAB_"), HasSubstr(message)));
    // What only the database knows: texts are no numbers there.
    if (GetParam() != Kind::Sqlite) {
        EXPECT_THAT(faultOf(bill("send_site = 5")), HasSubstr("表 TAB_BILL 的行规则不能用：数据库报告错误"));
    }
    EXPECT_THROW(open({ bill("1=1"), bill("2=2") }), Error);
}

/// An Oracle-class database gets its own text, changed where a rule is.
TEST(RulesForOracle, ChangeTheirTablesAlone)
{
    const gate::Schema schema { { "TAB_BILL", { "BILL_CODE", "SEND_SITE" } }, { "TAB_SITE", { "SITE_NAME" } } };
    gate::RowRules ruled(
        { { .table = "TAB_BILL", .condition = "send_site in (:sites) or send_site=:site", .hidden = { "BILL_CODE" } } }, schema);
    ruled.hide(0, { true }, schema);
    const auto written = [&](std::string_view sql, std::size_t sites, gate::RuleOrder order = gate::RuleOrder::Any) {
        const Reader reader(std::vector<std::string>(sites, "东"), "O'Hare", "E1");
        gate::Reading reading(ruled, reader);
        reading.order = order;
        return oracleText(sql, gate::check(sql, schema, &reading), &reading);
    };
    const std::string plain = "select /*+index(a,TAB_SITE_U)*/  nvl('','x')||1 from tab_site  a where rownum=1 -- all";
    EXPECT_EQ(written(plain, 1), plain);
    const std::string filtered
        = "(select '***' as \"BILL_CODE\",\"SEND_SITE\" from \"TAB_BILL\" where (send_site in ('东') or send_site='O''Hare'))";
    EXPECT_EQ(written("select /*+x*/ a.* from TAB_BILL a, \"TAB_BILL\"", 1),
        "select /*+x*/ a.* from " + filtered + " a, " + filtered + " \"TAB_BILL\"");
    EXPECT_THAT(written("select 1 from TAB_BILL", 1, gate::RuleOrder::First), HasSubstr("='O''Hare') and rownum>0) TAB_BILL"));
    // It takes a thousand values in a list.
    std::string split = written("select 1 from TAB_BILL", 2001);
    for (std::size_t more = 0; (more = split.find(",'东'")) != std::string::npos;)
        split.erase(more, std::string_view(",'东'").size());
    EXPECT_THAT(split, HasSubstr("where ((send_site in ('东') or send_site in ('东') or send_site in ('东')) or send_site='O''Hare')"));
}

} // namespace
