#include "tests/dataset/rows.h"

#include <algorithm>
#include <numeric>
#include <random>

namespace {

/// Sorts by the index "SortIndexEh" made anew, as a click on titles does.
void sortBy(TCustomClientDataSet &dataSet, const QString &fields, const QString &descending = {})
{
    dataSet.deleteIndex(QStringLiteral("SortIndexEh"));
    dataSet.addIndex({ QStringLiteral("SortIndexEh"), fields, descending });
    dataSet.setIndexName(QStringLiteral("SortIndexEh"));
}

constexpr auto bills = "CODE:text,SITE:text,FEE:decimal,N:integer,AT:time,X:float\n"
                       "1,b,10,-1,2024-03-05,0.5\n"
                       "2,,9.95,5,,-1\n"
                       "3,a,,-20,2023-03-05,\n"
                       "4,b,-0.5,,2024-03-05 00:00:01,-1.5\n"
                       "5,京,9.950,5,1969-12-31,1e9\n";

class OrderOf : public testing::TestWithParam<Origin> { };

TEST_P(OrderOf, RowsIsStableWithNullsSmallest)
{
    const std::array<QStringView, 3> cases[] = {
        { u"SITE", u"", u"2|3|1|4|5" },
        { u"SITE", u"SITE", u"5|1|4|3|2" },
        { u"fee", u"", u"3|4|2|5|1" },
        { u"FEE", u"fee", u"1|2|5|4|3" },
        { u"N", u"", u"4|3|1|2|5" },
        { u"AT", u"", u"2|5|3|1|4" },
        { u"X", u"", u"3|4|2|1|5" },
        { u"SITE;N", u"", u"2|3|4|1|5" },
        { u"SITE;N", u"N", u"2|3|1|4|5" },
        { u"N;FEE", u"", u"4|3|1|2|5" },
        { u"N;CODE", u"CODE", u"4|3|1|5|2" },
    };
    TCustomClientDataSet dataSet;
    fill(dataSet, bills, GetParam());
    for (const auto &[fields, descending, codes] : cases) {
        sortBy(dataSet, fields.toString(), descending.toString());
        EXPECT_EQ(shown(dataSet, u"CODE"), codes.toString())
            << fields.toString().toStdString() << " / " << descending.toString().toStdString();
    }
    dataSet.setIndexName({});
    EXPECT_EQ(shown(dataSet, u"CODE"), QStringLiteral("1|2|3|4|5"));
}

INSTANTIATE_TEST_SUITE_P(RowsFrom, OrderOf, testing::Values(Origin::Packet, Origin::Appended));

TEST(Order, KeepsTheCurrentRowAndTheFilterAndReturnsToTheDataOrder)
{
    TCustomClientDataSet dataSet;
    dataSet.setData(packetOf(bills));
    dataSet.moveTo(3);
    dataSet.setFilter(QStringLiteral("n is null or n < 5"));
    dataSet.setFiltered(true);
    sortBy(dataSet, QStringLiteral("CODE"), QStringLiteral("CODE"));
    EXPECT_EQ(shown(dataSet, u"CODE"), QStringLiteral("4|3|1"));
    EXPECT_EQ(dataSet.field(0)->asString(), QStringLiteral("4"));
    dataSet.deleteIndex(QStringLiteral("sortindexeh"));
    EXPECT_EQ(dataSet.indexName(), QString());
    EXPECT_EQ(shown(dataSet, u"CODE"), QStringLiteral("1|3|4"));
}

TEST(Order, OutlivesTheDataAndAMissingColumn)
{
    TCustomClientDataSet dataSet;
    dataSet.setData(packetOf(bills));
    sortBy(dataSet, QStringLiteral("SITE;CODE"), QStringLiteral("CODE"));
    dataSet.setData(packetOf("CODE:text\n1\n2\n"));
    EXPECT_EQ(shown(dataSet, u"CODE"), QStringLiteral("2|1"));
    EXPECT_NE(errorOf([&] { dataSet.setIndexName(QStringLiteral("none")); }), QString());
    EXPECT_NE(errorOf([&] { dataSet.addIndex({ QStringLiteral("x"), QStringLiteral("SITE"), {} }); }), QString());
    EXPECT_NE(errorOf([&] { dataSet.addIndex({ QStringLiteral("SORTINDEXEH"), QStringLiteral("CODE"), {} }); }), QString());
}

struct ManyRow {
    std::string text;
    int number;
};

std::vector<ManyRow> manyRows(int count)
{
    std::mt19937 random(7);
    const std::string starts[] = { "", "7", "2024030500", "202403050077777777", "上海市", "上海市浦东新区张江" };
    std::vector<ManyRow> rows;
    for (int row = 0; row < count; ++row)
        rows.push_back({ starts[random() % 6] + std::to_string(random() % 50'000), int(random() % 4'000) - 2'000 });
    return rows;
}

TEST(Order, ManyRowsSortAsTheStandardLibraryDoes)
{
    auto rows = manyRows(30'000);
    std::string table = "TEXT:text,FEE:decimal,ROW:integer\n";
    for (std::size_t row = 0; row < rows.size(); ++row)
        table += rows[row].text + ',' + std::to_string(rows[row].number) + (row < 10'000 ? "" : ".00") + ',' + std::to_string(row) + '\n';
    TCustomClientDataSet dataSet;
    dataSet.setData(packetOf(table));

    std::vector<std::size_t> expected(rows.size());
    for (std::size_t row = 0; row < rows.size(); ++row)
        expected[row] = row;
    const auto check = [&](auto less) {
        auto sorted = expected;
        std::ranges::stable_sort(sorted, less);
        for (int row = 0; row < dataSet.recordCount(); ++row)
            ASSERT_EQ(dataSet.text(2, row).toStdString(), std::to_string(sorted[std::size_t(row)])) << row;
    };
    sortBy(dataSet, QStringLiteral("TEXT"));
    check([&](std::size_t left, std::size_t right) { return rows[left].text < rows[right].text; });
    sortBy(dataSet, QStringLiteral("TEXT"), QStringLiteral("TEXT"));
    check([&](std::size_t left, std::size_t right) { return rows[left].text > rows[right].text; });
    sortBy(dataSet, QStringLiteral("FEE;TEXT"), QStringLiteral("FEE"));
    check([&](std::size_t left, std::size_t right) {
        return std::tuple(-rows[left].number, rows[left].text) < std::tuple(-rows[right].number, rows[right].text);
    });
}

TEST(Order, KeysOfAnyWidthCombine)
{
    std::mt19937_64 random(11);
    constexpr int count = 3'000;
    std::vector<std::array<std::int64_t, 3>> rows;
    std::string table = "WIDE:integer,FEW:integer,REAL:float,ROW:integer\n";
    for (int row = 0; row < count; ++row) {
        const auto wide = std::int64_t(random()) >> (row % 2 ? 0 : 40) | 1;
        rows.push_back({ wide, std::int64_t(random() % 3), std::int64_t(random() % 200'000) - 100'000 });
        for (const std::int64_t value : rows.back())
            table += std::to_string(value) + ',';
        table += std::to_string(row) + '\n';
    }
    TCustomClientDataSet dataSet;
    dataSet.setData(packetOf(table));
    sortBy(dataSet, QStringLiteral("FEW;REAL;WIDE"), QStringLiteral("REAL"));
    std::vector<std::size_t> expected(count);
    std::iota(expected.begin(), expected.end(), 0U);
    std::ranges::stable_sort(expected, {}, [&](std::size_t row) { return std::tuple(rows[row][1], -rows[row][2], rows[row][0]); });
    for (int row = 0; row < count; ++row)
        ASSERT_EQ(dataSet.text(3, row).toStdString(), std::to_string(expected[std::size_t(row)])) << row;
    sortBy(dataSet, QStringLiteral("WIDE;REAL"), QStringLiteral("WIDE"));
    std::iota(expected.begin(), expected.end(), 0U);
    std::ranges::stable_sort(expected, std::greater(), [&](std::size_t row) { return rows[row][0]; });
    for (int row = 0; row < count; ++row)
        ASSERT_EQ(dataSet.text(0, row).toStdString(), std::to_string(rows[expected[std::size_t(row)]][0])) << row;
}

TEST(Order, NumbersBeyond64BitsStillSort)
{
    TCustomClientDataSet dataSet;
    dataSet.setData(packetOf("FEE:decimal\n12345678901234567890123\n0.000001\n-12345678901234567890123\n\n99999999999999\n"));
    sortBy(dataSet, QStringLiteral("FEE"));
    EXPECT_EQ(shown(dataSet, u"FEE"), QStringLiteral("|-12345678901234567890123|0.000001|99999999999999|12345678901234567890123"));
    EXPECT_EQ(dataSet.sum(0), *packet::Decimal::parse("99999999999999.000001"));
}

} // namespace
