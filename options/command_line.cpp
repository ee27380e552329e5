#include "options/command_line.h"

#include "options/settings_reader.h"

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

class OptionFile : public SettingsReader {
public:
    OptionFile(const std::string &file, std::span<const Option> table)
        : SettingsReader(file)
        , m_table(table)
    {
    }
    void read(std::string_view text) { readLines(text); }

private:
    bool take(std::string_view key, std::string_view value) override
    try {
        const auto means = [key](const Option &option) { return !option.example.empty() && keyOf(option) == key; };
        const auto option = std::ranges::find_if(m_table, means);
        if (option == m_table.end())
            return false;
        if (!option->argument.empty())
            option->take(std::string(value));
        else if (value == "yes" || value == "no")
            option->take(value == "no" ? "no" : "");
        else
            throw Unfit { "yes 或 no" };
        return true;
    } catch (const SettingsError &) {
        throw;
    } catch (const std::exception &error) {
        fail("键“" + std::string(key) + "”的值不能用：" + error.what());
    }

    const std::span<const Option> m_table;
};

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

std::string keyOf(const Option &option)
{
    std::string key(option.name.substr(option.name.find_first_not_of('-')));
    std::ranges::replace(key, '-', '_');
    return key;
}

void readSettings(std::string_view text, const std::string &file, std::span<const Option> table) { OptionFile(file, table).read(text); }

std::string settingsSample(std::span<const Option> table)
{
    std::string text;
    for (const Option &option : table)
        if (!option.example.empty())
            text += "\n# " + std::string(option.help) + "。\n#" + keyOf(option) + " = " + std::string(option.example) + '\n';
    return text;
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
