#pragma once

#include <array>
#include <cstdint>
#include <string_view>

/// The fixed lists of the network, written to the lookup tables in this order.
namespace demo {

constexpr std::array<std::string_view, 12> scanTypes { "收件", "发件", "到件", "派件", "接件", "出库", "入库", "留仓", "装袋", "拆包",
    "称重", "退件扫描" };
constexpr std::array<std::string_view, 8> shifts { "早班", "中班", "晚班", "夜班", "班车", "航班", "铁路", "加班" };
constexpr std::array<std::string_view, 6> goodsTypes { "文件", "包裹", "样品", "电子产品", "服装", "易碎品" };
constexpr std::array<std::string_view, 6> fastTypes { "普通件", "次晨达", "当天件", "航空件", "陆运件", "香港件" };

enum ProblemType : std::size_t { AddressUnclear, NobodyHome, Refused, Damaged, PieceMissing, Misrouted, Lost };
constexpr std::array<std::string_view, 7> problemRemarks { "请寄件方补充门牌号", "电话无人接听，次日再派", "客户拒收，要求退回",
    "外箱破损，内件完好", "短少，正在查找", "错发到本网点，转回", "久未到件，登记遗失" };
constexpr std::array<std::string_view, 7> problemTypes { "地址不详", "客户不在", "客户拒收", "外包装破损", "少件", "错发", "遗失" };

/// A transfer price, in cents for the first and for every further kilogram.
struct Quote {
    std::string_view name;
    std::int64_t first;
    std::int64_t next;
};
enum Distance : std::size_t { City, Province, Region, Far, HongKong };
constexpr std::array<Quote, 5> quotes { {
    { "同城", 300, 85 },
    { "省内", 450, 120 },
    { "区域", 620, 245 },
    { "跨区", 880, 475 },
    { "香港", 2250, 960 },
} };

struct GlobalValue {
    std::string_view name;
    std::string_view value;
};
constexpr std::array<GlobalValue, 2> globalValues { {
    { "CompanyName", "凯络速递" },
    { "MainBill", "^([0-9]{8}|[0-9]{12})$" },
} };

} // namespace demo
