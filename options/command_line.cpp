#include "options/command_line.h"

#include <algorithm>
#include <stdexcept>

namespace options {
namespace {

[[noreturn]] void refuse(std::string_view before, std::string_view what, std::string_view after)
{
    throw std::invalid_argument(std::string(before) + "“" + std::string(what) + "”" + std::string(after));
}

const Option &optionOf(std::string_view name, std::span<const Option> table)
{
    const auto found = std::ranges::find(table, name, &Option::name);
    if (found == table.end())
        refuse("没有", name, "这个选项。用 --help 查看全部选项。");
    return *found;
}

} // namespace

void read(std::span<const std::string> arguments, std::span<const Option> table, const std::function<void(const std::string &)> &bare)
{
    for (std::size_t at = 0; at < arguments.size(); ++at) {
        const std::string &argument = arguments[at];
        if (!argument.starts_with('-') || argument == "-") {
            if (!bare)
                refuse("不认识的参数", argument, "。用 --help 查看全部选项。");
            bare(argument);
            continue;
        }
        const std::size_t equals = argument.find('=');
        const Option &option = optionOf(std::string_view(argument).substr(0, equals), table);
        const bool isJoined = equals != std::string::npos;
        if (option.argument.empty() && isJoined)
            refuse("选项", option.name, "不带参数。");
        if (option.argument.empty() || isJoined) {
            option.take(isJoined ? argument.substr(equals + 1) : std::string());
            continue;
        }
        if (at + 1 == arguments.size() || arguments[at + 1].starts_with("--"))
            refuse("选项", option.name, "后面缺少" + std::string(option.argument) + "。");
        option.take(arguments[++at]);
    }
}

std::string help(std::span<const Option> table)
{
    std::string text;
    for (const Option &option : table) {
        text += "  " + std::string(option.name);
        if (!option.argument.empty())
            text += ' ' + std::string(option.argument);
        text += "\n      " + std::string(option.help) + '\n';
    }
    return text;
}

} // namespace options
