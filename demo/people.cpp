#include "demo/people.h"

#include <array>

namespace demo {
namespace {

using namespace std::string_view_literals;

constexpr std::array surnames { "王"sv, "李"sv, "张"sv, "刘"sv, "陈"sv, "杨"sv, "黄"sv, "赵"sv, "吴"sv, "周"sv, "徐"sv, "孙"sv, "马"sv,
    "朱"sv, "胡"sv, "郭"sv, "何"sv, "高"sv, "林"sv, "罗"sv, "郑"sv, "梁"sv, "谢"sv, "宋"sv, "唐"sv, "许"sv, "韩"sv, "冯"sv, "邓"sv, "曹"sv,
    "彭"sv, "曾"sv, "肖"sv, "田"sv, "董"sv, "袁"sv, "潘"sv, "于"sv, "蒋"sv, "蔡"sv, "余"sv, "杜"sv, "叶"sv, "程"sv, "苏"sv, "魏"sv, "吕"sv,
    "丁"sv, "任"sv, "沈"sv, "姚"sv, "卢"sv, "单"sv, "解"sv, "仇"sv, "欧阳"sv };

constexpr std::array givenNames { "伟"sv, "芳"sv, "娜"sv, "敏"sv, "静"sv, "丽"sv, "强"sv, "磊"sv, "军"sv, "洋"sv, "勇"sv, "艳"sv, "杰"sv,
    "娟"sv, "涛"sv, "明"sv, "超"sv, "霞"sv, "平"sv, "刚"sv, "桂英"sv, "建国"sv, "建华"sv, "志强"sv, "小红"sv, "晓东"sv, "海燕"sv, "春梅"sv,
    "玉兰"sv, "文斌"sv, "国庆"sv, "永军"sv, "丽华"sv, "秀英"sv, "立新"sv, "振华"sv, "晓明"sv, "雪梅"sv, "浩然"sv, "子轩"sv, "思雨"sv,
    "佳怡"sv, "俊杰"sv, "宇航"sv, "红梅"sv, "长江"sv, "重阳"sv, "大鹏"sv, "朝晖"sv, "乐天"sv };

constexpr std::array brands { "华信"sv, "恒达"sv, "金鼎"sv, "天元"sv, "新世纪"sv, "宏图"sv, "鑫源"sv, "瑞丰"sv, "博远"sv, "联创"sv,
    "东方"sv, "嘉禾"sv, "宝利"sv, "兴隆"sv, "永泰"sv, "锦绣"sv, "长城"sv, "银河"sv, "海纳"sv, "九州"sv };

constexpr std::array trades { "科技"sv, "服饰"sv, "电子"sv, "贸易"sv, "医疗器械"sv, "图书"sv, "家居"sv, "食品"sv, "通讯器材"sv,
    "文化传播"sv, "律师事务所"sv, "汽车配件"sv, "化妆品"sv, "印务"sv };

constexpr std::array streets { "人民路"sv, "解放大道"sv, "中山路"sv, "建设街"sv, "和平里"sv, "长安街"sv, "文化路"sv, "工业园一路"sv,
    "新华街"sv, "光明路"sv, "学院路"sv, "朝阳大街"sv, "滨江道"sv, "迎宾路"sv, "胜利街"sv, "科技园南区"sv };

std::string twoDigits(std::int64_t value) { return { static_cast<char>('0' + value / 10 % 10), static_cast<char>('0' + value % 10) }; }

} // namespace

std::string personName(Random &random)
{
    std::string name(random.pick(surnames));
    return name.append(random.pick(givenNames));
}

std::string companyName(Random &random, std::string_view town)
{
    std::string name(town);
    name.append(random.pick(brands));
    const auto trade = random.pick(trades);
    name.append(trade);
    return trade.ends_with("事务所") ? name : name.append("有限公司");
}

std::string phoneNumber(Random &random)
{
    constexpr std::array prefixes { "13"sv, "15"sv, "18"sv };
    std::string number(random.pick(prefixes));
    number += static_cast<char>('0' + random.below(10));
    number += "****";
    number += twoDigits(random.below(100));
    return number += twoDigits(random.below(100));
}

std::string streetAddress(Random &random, std::string_view town)
{
    std::string address(town);
    address.append(random.pick(streets));
    address += std::to_string(random.between(1, 399)) + "号";
    if (random.perMille(600)) {
        address += std::to_string(random.between(1, 28)) + "层";
        address += twoDigits(random.between(1, 18)) + "室";
    }
    return address;
}

} // namespace demo
