#include "server/options.h"

#include "options/command_line.h"

#include <charconv>
#include <stdexcept>
#include <vector>

namespace server {
namespace {

using Mode = Options::Mode;

std::uint16_t portOf(const std::string &text)
{
    std::uint16_t port = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    if (error != std::errc() || end != text.data() + text.size())
        throw std::invalid_argument("--port 要求 0 到 65535 的整数，不能是“" + text + "”。");
    return port;
}

std::vector<options::Option> optionsOf(Options &options)
{
    const auto text = [](auto &member) { return [&member](const std::string &value) { member = value; }; };
    const auto mode = [&options](Mode wanted) { return [&options, wanted](const std::string &) { options.mode = wanted; }; };
    return {
        { "--config", "文件", "配置文件", text(options.config) },
        { "--check-config", "", "只检查配置文件，不启动", mode(Mode::CheckConfig) },
        { "--users", "文件", "user 命令的用户文件", text(options.users) },
        { "--password-stdin", "", "密码从标准输入的第一行读取", [&options](const std::string &) { options.passwordFromInput = true; } },
        { "--demo", "", "在本机演示：自签名证书，用户 demo，密码打印在屏幕上", mode(Mode::Demo) },
        { "--database", "URL", "演示用的数据库，如 sqlite:parcels.db；默认为数据目录中最新的 demo-*.db", text(options.database) },
        { "--port", "N", "演示用的端口，默认 8866；0 表示任选一个",
            [&options](const std::string &value) { options.port = portOf(value); } },
        { "--data", "目录", "演示用的数据目录，默认 run-data", text(options.data) },
        { "--version", "", "显示版本", mode(Mode::Version) },
        { "--help", "", "显示本说明", mode(Mode::Help) },
    };
}

/// "user", its command and its user, as far as they are there.
void useWords(const std::vector<std::string> &words, Options &options)
{
    if (words.empty())
        return;
    if (words[0] != "user" || words.size() > 3)
        throw std::invalid_argument("不认识的参数“" + words[words[0] == "user" ? 3 : 0] + "”。用 --help 查看用法。");
    options.mode = Mode::User;
    options.userCommand = words.size() > 1 ? words[1] : std::string();
    options.userName = words.size() > 2 ? words[2] : std::string();
    const std::string &command = options.userCommand;
    if (command != "add" && command != "passwd" && command != "remove" && command != "list")
        throw std::invalid_argument("user 后面应是 add、passwd、remove 或 list。");
}

void check(const Options &options)
{
    const bool needsConfig = options.mode == Mode::Serve || options.mode == Mode::CheckConfig;
    if (needsConfig && options.config.empty())
        throw std::invalid_argument("没有给出配置文件，请加上 --config 文件。用 --help 查看用法。");
    if (options.mode != Mode::User)
        return;
    if (options.users.empty())
        throw std::invalid_argument("没有给出用户文件，请加上 --users 文件。");
    if (options.userName.empty() != (options.userCommand == "list"))
        throw std::invalid_argument(options.userName.empty() ? "没有给出用户名。" : "user list 不需要用户名。");
}

} // namespace

std::string helpText()
{
    Options unused;
    return R"(用法：
  kelvara-server --config 文件                   按配置文件提供服务
  kelvara-server --config 文件 --check-config    只检查配置文件，不启动
  kelvara-server --demo [--database URL] [--port N] [--data 目录]
  kelvara-server user add 用户名 --users 文件    增加用户，密码从终端输入
  kelvara-server user passwd 用户名 --users 文件 更改密码
  kelvara-server user remove 用户名 --users 文件 删除用户
  kelvara-server user list --users 文件          列出用户

选项：
)" + options::help(optionsOf(unused))
        + "\n信号：SIGTERM 停止接受新请求，等正在运行的查询完成后退出；SIGHUP 重新读取证书并重新打开审计日志。\n";
}

Options readOptions(std::span<const std::string> arguments)
{
    Options options;
    std::vector<std::string> words;
    options::read(arguments, optionsOf(options), [&words](const std::string &word) { words.push_back(word); });
    if (options.mode != Mode::Help && options.mode != Mode::Version) {
        useWords(words, options);
        check(options);
    }
    return options;
}

} // namespace server
