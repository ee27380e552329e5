#include "plugin/data/host_data.h"
#include "plugin/data/udm_GlobalData.h"

#include "platform/toolkit/clock.h"
#include "tests/plugin/fake_host.h"

#include <gtest/gtest.h>

using namespace platform;

namespace {

TEST(HostData, DataSetsAreFoundWhateverTheCaseAndAfterTheListChanges)
{
    FakeHost host;
    EXPECT_EQ(GlobalCdsAddr(QStringLiteral("SITE"))->objectName(), QStringLiteral("site"));
    EXPECT_EQ(GlobalCdsAddr(QStringLiteral("area"))->objectName(), QStringLiteral("area"));
    // The remembered place lies beyond the end now.
    host.removeDataSet(u"AllSite");
    EXPECT_EQ(GlobalCdsAddr(QStringLiteral("Area"))->objectName(), QStringLiteral("area"));
    EXPECT_EQ(GlobalCdsAddr(QStringLiteral("class"))->objectName(), QStringLiteral("Class"));
    try {
        GlobalCdsAddr(QStringLiteral("SiteX"));
        ADD_FAILURE() << "found";
    } catch (const Exception &exception) {
        EXPECT_EQ(exception.message(), QStringLiteral("全局数据集\"SiteX\"不存在！"));
    }
}

TEST(HostData, ValuesAreTextsAndAMissingOneIsEmpty)
{
    FakeHost host;
    host.addValue("MainBill", QStringLiteral("^[0-9]{12}$"));
    EXPECT_EQ(GlobalValueAddr(QStringLiteral("mainbill")), QStringLiteral("^[0-9]{12}$"));
    EXPECT_EQ(GlobalValueAddr(QStringLiteral("site")), QStringLiteral("北京"));
    EXPECT_EQ(GlobalValueAddr(QStringLiteral("userSite")), QString());
}

TEST(HostData, ServerTimeHasTheSecondsOfTheLocalClock)
{
    FakeHost host;
    const QDateTime server(QDate(2024, 3, 5), QTime(10, 7, 59), Qt::UTC);
    host.serverDateTime = double(QDateTime(QDate(1899, 12, 30), QTime(0, 0), Qt::UTC).secsTo(server)) / 86'400;
    Clock::set(QDateTime(QDate(2024, 3, 5), QTime(10, 9, 3)));
    EXPECT_EQ(dateTimeToText(GetServerDateTime()), QStringLiteral("2024-03-05 10:07:03"));
    Clock::set({});
}

TEST(GlobalData, SharesTheHostsDataSetsAndCopiesTheUsersSites)
{
    FakeHost host;
    host.addValue("userSite", QStringLiteral("('上海','广州','深圳')"));
    const Tdm_GlobalData data;
    EXPECT_EQ(data.ds_site->dataSet(), GlobalCdsAddr(QStringLiteral("site")));
    EXPECT_EQ(data.ds_area->dataSet(), GlobalCdsAddr(QStringLiteral("area")));
    ASSERT_TRUE(data.UserSite->active());
    EXPECT_EQ(data.UserSite->recordCount(), 2);
    EXPECT_EQ(GlobalCdsAddr(QStringLiteral("AllSite"))->recordCount(), 3);
}

TEST(GlobalData, WithoutUserSitesTheCopyStaysClosed)
{
    FakeHost host;
    const Tdm_GlobalData data;
    EXPECT_FALSE(data.UserSite->active());
}

} // namespace
