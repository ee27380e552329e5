#include "tests/dataset/rows.h"

namespace {

constexpr auto bills = "CODE:text,TYPE:text,WEIGHT:decimal,N:integer,AT:time,X:float\n"
                       "A1,同省,2.50,3,2024-03-05 10:00:00,0.1\n"
                       "A2,外省,10,,2024-03-06,\n"
                       "B1,,0.05,1,,-2\n"
                       "b1,同省,,20,2024-03-07 09:00:00,3\n"
                       "O'x,100%,2.5,3,2024-03-05 10:00:01,1e3\n";

struct Case {
    QStringView filter;
    QStringView codes;
};

constexpr Case cases[] = {
    { u"type= '同省'", u"A1|b1" },
    { u"TYPE<>'同省'", u"A2|O'x" },
    { u"[type] in ('同省','100%')", u"A1|b1|O'x" },
    { u"type not in ('同省')", u"A2|O'x" },
    { u"code = 'b1'", u"b1" },
    { u"code='O''x'", u"O'x" },
    { u"code='none' or code in ('none')", u"" },
    { u"code>='A2' and code<'O'", u"A2|B1" },
    { u"code like '_1'", u"A1|B1|b1" },
    { u"type like '_省'", u"A1|A2|b1" },
    { u"type like '%0\u0025'", u"O'x" },
    { u"code like '%1%' and not code like 'A%'", u"B1|b1" },
    { u"code like '%1A%' or code like '%1B%'", u"" },
    { u"code not like '%1'", u"A2|O'x" },
    { u"type is null", u"B1" },
    { u"not type is not null", u"B1" },
    { u"type = ''", u"" },
    { u"type <> ''", u"" },
    { u"type in ('', '外省')", u"A2" },
    { u"type not in ('', '外省')", u"" },
    { u"weight = 2.5", u"A1|O'x" },
    { u"weight <> 2.5", u"A2|B1" },
    { u"weight > '0.05'", u"A1|A2|O'x" },
    { u"weight <= .05", u"B1" },
    { u"not (weight >= 2.5 or n = 1)", u"" },
    { u"not (weight < 2.5 and n = 1)", u"A1|A2|b1|O'x" },
    { u"n in (1, 20)", u"B1|b1" },
    { u"x > -2.5 and x < 0.11", u"A1|B1" },
    { u"at >= '2024-03-05 10:00:01' and at < '2024-03-07'", u"A2|O'x" },
    { u"at = '2024-03-06'", u"A2" },
    { u"n = 3 or n = 20 and type = '同省'", u"A1|b1|O'x" },
    { u"(n = 3 or n = 20) and type = '同省'", u"A1|b1" },
    { u"  ", u"A1|A2|B1|b1|O'x" },
};

class FilterOf : public testing::TestWithParam<Origin> { };

TEST_P(FilterOf, ShowsTheRowsThatPass)
{
    TCustomClientDataSet dataSet;
    fill(dataSet, bills, GetParam());
    dataSet.setFiltered(true);
    for (const Case &one : cases) {
        dataSet.setFilter(one.filter.toString());
        EXPECT_EQ(shown(dataSet, u"CODE"), one.codes.toString()) << one.filter.toString().toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(RowsFrom, FilterOf, testing::Values(Origin::Packet, Origin::Appended));

TEST(Filter, NumbersWrittenInATextColumnCompareAsNumbers)
{
    TCustomClientDataSet dataSet;
    dataSet.setData(packetOf("CODE:text\n007\n10\nx\n"));
    dataSet.setFilter(QStringLiteral("code < 9.5"));
    dataSet.setFiltered(true);
    EXPECT_EQ(shown(dataSet, u"CODE"), QStringLiteral("007"));
    dataSet.setFilter(QStringLiteral("code <> 7"));
    EXPECT_EQ(shown(dataSet, u"CODE"), QStringLiteral("10"));
}

TEST(Filter, ErrorsNameThePlaceAndLeaveTheOldFilter)
{
    TCustomClientDataSet dataSet;
    dataSet.setData(packetOf(bills));
    dataSet.setFilter(QStringLiteral("code='A1'"));
    dataSet.setFiltered(true);
    const std::pair<QString, QStringView> errors[] = {
        { QStringLiteral("none = 1"), u"过滤条件第 1 个字符处：没有字段“none”。" },
        { QStringLiteral("code = 'A"), u"过滤条件第 8 个字符处：文字没有结束，缺少单引号。" },
        { QStringLiteral("code = "), u"过滤条件第 8 个字符处：这里应当是文字（用单引号括起）或数字。" },
        { QStringLiteral("(code = 'A'"), u"过滤条件第 12 个字符处：这里应当是“)”。" },
        { QStringLiteral("code = 'A' n"), u"过滤条件第 12 个字符处：多余的内容“n”。" },
        { QStringLiteral("code ? 'A'"), u"过滤条件第 6 个字符处：这里应当是比较符号、in、like 或 is null。" },
        { QStringLiteral("n = 'x'"), u"过滤条件第 5 个字符处：“x”不是数字。" },
        { QStringLiteral("at > '5.3.'"), u"过滤条件第 6 个字符处：“5.3.”不是日期时间，应写成 2024-03-05 或 2024-03-05 10:07:59。" },
        { QStringLiteral("n like '1'"), u"过滤条件第 8 个字符处：like 只能用于文字字段。" },
        { QString(100'000, u'('), u"过滤条件第 201 个字符处：条件嵌套太深，最多 200 层。" },
    };
    for (const auto &[filter, message] : errors) {
        EXPECT_EQ(errorOf([&] { dataSet.setFilter(filter); }), message.toString());
        EXPECT_EQ(shown(dataSet, u"CODE"), QStringLiteral("A1"));
    }
    EXPECT_EQ(dataSet.filter(), QStringLiteral("code='A1'"));
}

TEST(Filter, StaysForTheNextData)
{
    TCustomClientDataSet dataSet;
    dataSet.setFilter(QStringLiteral("type= '同省'"));
    dataSet.setFiltered(true);
    dataSet.setData(packetOf(bills));
    EXPECT_EQ(dataSet.recordCount(), 2);
    dataSet.setData(packetOf("CODE:text,TYPE:text\nA,\nB,\n"));
    EXPECT_EQ(dataSet.recordCount(), 0);
    EXPECT_NE(errorOf([&] { dataSet.setData(packetOf("CODE:text\nA\n")); }), QString());
    EXPECT_FALSE(dataSet.active());
    dataSet.setFiltered(false);
    dataSet.setData(packetOf("CODE:text\nA\n"));
    EXPECT_EQ(dataSet.recordCount(), 1);
}

TEST(Filter, ReachesAcrossBlocksAndKeepsTheCurrentRow)
{
    std::string table = "N:integer,SITE:text,FEE:decimal\n";
    for (int row = 0; row < 20'000; ++row)
        table += std::to_string(row) + (row % 3 == 0 ? ",北京,0.01\n" : ",,1\n");
    TCustomClientDataSet dataSet;
    dataSet.setData(packetOf(table));
    EXPECT_EQ(dataSet.sum(0), (packet::Decimal { 199'990'000, 0 }));
    dataSet.moveTo(9'999);
    dataSet.setFilter(QStringLiteral("site = '北京' and n >= 6000"));
    dataSet.setFiltered(true);
    EXPECT_EQ(dataSet.recordCount(), 4'667);
    EXPECT_EQ(dataSet.field(0)->asString(), QStringLiteral("9999"));
    EXPECT_EQ(dataSet.sum(2), (packet::Decimal { 4'667, 2 }));
    dataSet.setFiltered(false);
    EXPECT_EQ(dataSet.recordIndex(), 9'999);
}

} // namespace
