#include "tests/dataset/rows.h"

using namespace platform;

namespace {

constexpr auto sites = "SITE_CODE:text,SITE_NAME:text,FEE:decimal,AT:time\n"
                       "010,北京市内部,1.50,2024-03-05\n"
                       "010a,Beijing,,\n"
                       "021,上海,2,2024-03-05 10:00:00\n"
                       "021,上海,3,\n";

struct Case {
    QStringView fields;
    QStringList values;
    LocateOption option;
    int row;
};

class LocateIn : public testing::TestWithParam<Origin> { };

TEST_P(LocateIn, FindsTheFirstRowThatEquals)
{
    using enum LocateOption;
    const Case cases[] = {
        { u"site_code", { QStringLiteral("021") }, Exact, 2 },
        { u"SITE_NAME", { QStringLiteral("北京") }, Exact, -1 },
        { u"SITE_NAME", { QStringLiteral("北京") }, Partial, 0 },
        { u"SITE_NAME", { QStringLiteral("beijing") }, Exact, -1 },
        { u"SITE_NAME", { QStringLiteral("beijing") }, CaseInsensitive, 1 },
        { u"SITE_CODE", { QStringLiteral("010A") }, Exact, -1 },
        { u"SITE_CODE", { QStringLiteral("21") }, Exact, -1 },
        { u"FEE", { QStringLiteral("1.5") }, Exact, 0 },
        { u"FEE", { QStringLiteral("2.00") }, Exact, 2 },
        { u"FEE", { QStringLiteral("two") }, Exact, -1 },
        { u"FEE", { QString() }, Exact, 1 },
        { u"AT", { QStringLiteral("2024-03-05 10:00:00") }, Exact, 2 },
        { u"AT", { QStringLiteral("2024-03-05") }, Exact, -1 },
        { u"AT", { QStringLiteral("2024-03-05") }, Partial, 0 },
        { u"SITE_CODE;fee", { QStringLiteral("021"), QStringLiteral("3") }, Exact, 3 },
        { u"SITE_CODE; FEE", { QStringLiteral("010"), QStringLiteral("3") }, Exact, -1 },
    };
    TCustomClientDataSet dataSet;
    fill(dataSet, sites, GetParam());
    for (const Case &one : cases) {
        dataSet.moveTo(1);
        EXPECT_EQ(dataSet.locate(one.fields.toString(), one.values, one.option), one.row >= 0);
        EXPECT_EQ(dataSet.recordIndex(), one.row >= 0 ? one.row : 1)
            << one.fields.toString().toStdString() << one.values.join(u',').toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(RowsFrom, LocateIn, testing::Values(Origin::Packet, Origin::Appended));

TEST(Locate, LooksAtShownRowsOnlyAndInTheirOrder)
{
    TCustomClientDataSet dataSet;
    dataSet.setData(packetOf(sites));
    dataSet.addIndex({ QStringLiteral("byFee"), QStringLiteral("FEE"), QStringLiteral("FEE") });
    dataSet.setIndexName(QStringLiteral("byFee"));
    EXPECT_TRUE(dataSet.locate(QStringLiteral("SITE_NAME"), { QStringLiteral("上海") }));
    EXPECT_EQ(dataSet.fieldByName(u"FEE")->asString(), QStringLiteral("3"));
    dataSet.setFilter(QStringLiteral("fee < 3"));
    dataSet.setFiltered(true);
    EXPECT_FALSE(dataSet.locate(QStringLiteral("FEE"), { QStringLiteral("3") }));
}

TEST(Locate, SeesEditedValuesOnly)
{
    TCustomClientDataSet dataSet;
    dataSet.setData(packetOf(sites));
    dataSet.edit();
    dataSet.field(1)->setAsString(QStringLiteral("天津"));
    dataSet.post();
    EXPECT_FALSE(dataSet.locate(QStringLiteral("SITE_NAME"), { QStringLiteral("北京市内部") }));
    EXPECT_TRUE(dataSet.locate(QStringLiteral("SITE_NAME"), { QStringLiteral("天津") }));
    EXPECT_EQ(dataSet.recordIndex(), 0);
}

TEST(Locate, WrongQuestionsAreRefused)
{
    TCustomClientDataSet dataSet;
    EXPECT_NE(errorOf([&] { (void)dataSet.locate(QStringLiteral("FEE"), { QStringLiteral("3") }); }), QString());
    dataSet.setData(packetOf(sites));
    EXPECT_NE(errorOf([&] { (void)dataSet.locate(QStringLiteral("NONE"), { QStringLiteral("3") }); }), QString());
    EXPECT_NE(errorOf([&] { (void)dataSet.locate(QStringLiteral("FEE;AT"), { QStringLiteral("3") }); }), QString());
}

} // namespace
