#include "demo/options.h"

#include <charconv>
#include <stdexcept>

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

void readPath(Settings &settings, const std::string &argument)
{
    if (argument.size() > 1 && argument.front() == '-')
        throw std::invalid_argument("没有“" + argument + "”这个选项。用 --help 查看全部选项。");
    if (!settings.path.empty())
        throw std::invalid_argument("只能给出一个输出文件，多了“" + argument + "”。");
    settings.path = argument;
}

} // namespace

const std::string_view helpText = R"(用法：kelvara-demo [选项] 输出文件
      kelvara-demo [选项] postgresql://用户@主机/数据库

生成演示用的快递网络数据库：网点、员工、客户，以及每票运单从收件到签收的全部扫描。输出为 SQLite 文件，
或已有的 PostgreSQL 数据库（先用 oracle.sql 准备好）中的表。选项相同，生成的数据就相同。

选项：
  --waybills N   运单票数，默认 20000
  --days N       收件日期的天数，到截止日为止；默认从上个月的第一天开始
  --seed N       随机种子，默认 1
  --as-of 时间   截止时间，写作 yyyy-mm-dd 或 "yyyy-mm-dd hh:mm:ss"；只写日期时为当天结束；默认为现在
  --force        输出文件或这些表已存在时替换它们
  --help         显示本说明

可以先用这些登录网点：“北京”（中心）、“北京市内部”（中心）、“北京朝阳”（直营网点）、“广东中心”（中心）、
“广州”（直营网点）。按默认条件，它们在多数查询窗口都有数据。
)";

Options readOptions(std::span<const std::string> arguments, Moment now)
{
    Options options;
    options.settings.asOf = now;
    for (std::size_t at = 0; at < arguments.size(); ++at) {
        const std::string &name = arguments[at];
        const auto value = [&]() -> const std::string & {
            if (at + 1 == arguments.size())
                throw std::invalid_argument(name + " 后面缺少取值。");
            return arguments[++at];
        };
        if (name == "--help")
            options.wantsHelp = true;
        else if (name == "--force")
            options.settings.replaces = true;
        else if (name == "--waybills")
            options.settings.waybills = number(name, value(), 1, mostWaybills);
        else if (name == "--days")
            options.settings.days = static_cast<int>(number(name, value(), 1, mostDays));
        else if (name == "--seed")
            options.settings.seed = number(name, value(), 0, UINT64_MAX);
        else if (name == "--as-of")
            options.settings.asOf = moment(name, value());
        else
            readPath(options.settings, name);
    }
    if (options.settings.path.empty() && !options.wantsHelp)
        throw std::invalid_argument("没有给出输出文件。用 --help 查看用法。");
    return options;
}

} // namespace demo
