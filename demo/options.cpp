#include "demo/options.h"

#include "options/command_line.h"

#include <charconv>
#include <stdexcept>
#include <vector>

namespace demo {
namespace {

constexpr std::uint64_t mostWaybills = 100'000'000;
constexpr std::uint64_t mostDays = 3660;

std::uint64_t number(const std::string &option, const std::string &text, std::uint64_t low, std::uint64_t high)
{
    std::uint64_t value = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || stop != text.data() + text.size() || value < low || value > high)
        throw std::invalid_argument(
            option + " 要求 " + std::to_string(low) + " 到 " + std::to_string(high) + " 的整数，不能是“" + text + "”。");
    return value;
}

Moment moment(const std::string &option, const std::string &text)
{
    if (const auto value = parseMoment(text))
        return *value;
    throw std::invalid_argument(option + " 要求日期，如 2026-03-15 或 \"2026-03-15 18:00:00\"，不能是“" + text + "”。");
}

std::vector<options::Option> optionsOf(Options &options)
{
    Settings &settings = options.settings;
    return {
        { "--waybills", "票数", "运单票数，默认 20000",
            [&](const std::string &value) { settings.waybills = number("--waybills", value, 1, mostWaybills); } },
        { "--days", "天数", "收件日期的天数，到截止日为止；默认从上个月的第一天开始",
            [&](const std::string &value) { settings.days = static_cast<int>(number("--days", value, 1, mostDays)); } },
        { "--seed", "数", "随机种子，默认 1", [&](const std::string &value) { settings.seed = number("--seed", value, 0, UINT64_MAX); } },
        { "--as-of", "时间", "截止时间，写作 yyyy-mm-dd 或 \"yyyy-mm-dd hh:mm:ss\"；只写日期时为当天结束；默认为现在",
            [&](const std::string &value) { settings.asOf = moment("--as-of", value); } },
        { "--monthly", "", "PostgreSQL 的扫描表按月分区", [&](const std::string &) { settings.isMonthly = true; } },
        { "--force", "", "输出文件或这些表已存在时替换它们", [&](const std::string &) { settings.replaces = true; } },
        { "--version", "", "显示版本", [&](const std::string &) { options.wantsVersion = true; } },
        { "--help", "", "显示本说明", [&](const std::string &) { options.wantsHelp = true; } },
    };
}

} // namespace

std::string helpText()
{
    Options unused;
    return R"(用法：kelvara-demo [选项] 输出文件
      kelvara-demo [选项] postgresql://用户@主机/数据库

生成演示用的快递网络数据库：网点、员工、客户，以及每票运单从收件到签收的全部扫描。输出为 SQLite 文件，
或已有的 PostgreSQL 数据库（先用 oracle.sql 准备好）中的表。选项相同，生成的数据就相同。

选项：
)" + options::help(optionsOf(unused))
        + R"(
可以先用这些登录网点：“北京”（中心）、“北京市内部”（中心）、“北京朝阳”（直营网点）、“广东中心”（中心）、
“广州”（直营网点）。按默认条件，它们在多数查询窗口都有数据。
)";
}

Options readOptions(std::span<const std::string> arguments, Moment now)
{
    Options options;
    std::string &path = options.settings.path;
    options.settings.asOf = now;
    options::read(arguments, optionsOf(options), [&path](const std::string &argument) {
        if (!path.empty())
            throw std::invalid_argument("只能给出一个输出文件，多了“" + argument + "”。");
        path = argument;
    });
    if (path.empty() && !options.wantsHelp && !options.wantsVersion)
        throw std::invalid_argument("没有给出输出文件。用 --help 查看用法。");
    return options;
}

} // namespace demo
