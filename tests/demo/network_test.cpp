#include "demo/network.h"

#include <gtest/gtest.h>

#include <array>
#include <set>
#include <string>

using namespace demo;

namespace {

std::string way(const Network &network, std::string_view origin, std::string_view destination, bool collects = false)
{
    std::string names;
    for (const Site *site : network.route(network.site(origin), network.site(destination), collects))
        names.append(names.empty() ? "" : " ").append(site->name);
    return names;
}

} // namespace

TEST(Network, RoutesThroughTheCentresInBetween)
{
    struct Case {
        std::string_view origin, destination, way;
    };
    constexpr std::array cases {
        Case { "北京朝阳", "北京朝阳", "北京朝阳" },
        Case { "北京朝阳", "北京海淀", "北京朝阳 北京市内部 北京海淀" },
        Case { "北京业务部", "北京海淀", "北京业务部 北京 北京市内部 北京海淀" },
        Case { "北京朝阳", "北京", "北京朝阳 北京市内部 北京" },
        Case { "广州天河", "广州", "广州天河 广州" },
        Case { "广州天河", "广州番禺", "广州天河 广州 广州番禺" },
        Case { "六安", "亳州", "六安 安徽中心 亳州" },
        Case { "六安", "温州", "六安 安徽中心 浙江中心 温州" },
        Case { "天津", "长沙", "天津 天津中心 广东中心 湖南中心 长沙" },
        Case { "天津", "香港", "天津 天津中心 广东中心 香港" },
        Case { "香港", "北京朝阳", "香港 广东中心 北京 北京市内部 北京朝阳" },
    };
    const Network network(1);
    for (const auto &[origin, destination, expected] : cases)
        EXPECT_EQ(way(network, origin, destination), expected);
    EXPECT_EQ(way(network, "上海徐汇", "北京朝阳", true), "上海徐汇 上海中心 北京 北京贷款 北京朝阳");
    EXPECT_EQ(way(network, "北京海淀", "北京朝阳", true), "北京海淀 北京市内部 北京朝阳");
}

TEST(Network, PricesByDistance)
{
    const Network network(1);
    const auto distance = [&](std::string_view origin, std::string_view destination) {
        return network.distance(network.site(origin), network.site(destination));
    };
    EXPECT_EQ(distance("北京朝阳", "北京海淀"), City);
    EXPECT_EQ(distance("广州天河", "广州番禺"), City);
    EXPECT_EQ(distance("广州天河", "深圳"), Province);
    EXPECT_EQ(distance("蚌埠", "上海徐汇"), Region);
    EXPECT_EQ(distance("蚌埠", "成都"), Far);
    EXPECT_EQ(distance("蚌埠", "香港"), HongKong);
}

TEST(Network, StaffsEverySiteWithPeopleOfDistinctNames)
{
    const Network network(3);
    for (const Site &site : network.sites()) {
        std::set<std::string> names;
        for (const auto *people : { &site.couriers, &site.operators, &site.clerks }) {
            EXPECT_FALSE(people->empty()) << site.name;
            for (const Employee &employee : *people)
                EXPECT_TRUE(names.insert(employee.name).second) << site.name << employee.name;
        }
    }
}
