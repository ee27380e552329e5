#include "server/options.h"

#include "options/command_line.h"

#include <algorithm>
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

double secondsOf(const std::string &text)
{
    double seconds = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
    if (error != std::errc() || end != text.data() + text.size() || !(seconds > 0))
        throw std::invalid_argument("--slow 要求秒数，如 10 或 0.5，不能是“" + text + "”。");
    return seconds;
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
        { "--log", "文件", "audit 命令的审计日志；默认为配置文件中的", text(options.auditLog) },
        { "--user", "用户名", "audit 命令只显示这个用户", text(options.auditUser) },
        { "--from", "时间",
            "audit 命令从这个时间起，本机的时间，写作 yyyy-mm-dd 或 \"yyyy-mm-dd hh:mm:ss\"，或 今天、昨天、本周、上周、本月、上月",
            text(options.auditFrom) },
        { "--since", "时间", "与 --from 相同", text(options.auditFrom) },
        { "--to", "时间", "audit 命令到这个时间为止；只写日期时包括那一天", text(options.auditTo) },
        { "--slow", "秒", "audit 命令只显示用了这么多秒以上的查询，连同语句",
            [&options](const std::string &value) { options.slowSeconds = secondsOf(value); } },
        { "--control", "文件", "status 命令连接的文件；默认为配置文件中的 control", text(options.control) },
        { "--end", "编号", "status 命令结束这条查询", text(options.endedStatement) },
        { "--json", "", "audit 和 status 命令显示 JSON 行，不排成表", [&options](const std::string &) { options.asJson = true; } },
        { "--demo", "", "在本机演示：自签名证书，用户和密码打印在屏幕上", mode(Mode::Demo) },
        { "--database", "URL", "演示用的数据库，如 sqlite:parcels.db；默认为数据目录中最新的 demo-*.db", text(options.database) },
        { "--port", "N", "演示用的端口，默认 8866；0 表示任选一个",
            [&options](const std::string &value) { options.port = portOf(value); } },
        { "--data", "目录", "演示用的数据目录，默认 run-data", text(options.data) },
        { "--version", "", "显示版本", mode(Mode::Version) },
        { "--help", "", "显示本说明", mode(Mode::Help) },
    };
}

constexpr std::string_view userCommands[] = { "add", "set", "passwd", "remove", "list", "import" };

/// "audit", "status", or "user", its command, its user or file and its fields, as far as they are there.
void useWords(const std::vector<std::string> &words, Options &options)
{
    if (words.empty())
        return;
    const bool isAudit = words[0] == "audit";
    if (isAudit || words[0] == "status") {
        if (words.size() > 1)
            throw std::invalid_argument("不认识的参数“" + words[1] + "”。用 --help 查看用法。");
        options.mode = isAudit ? Mode::Audit : Mode::Status;
        return;
    }
    if (words[0] != "user")
        throw std::invalid_argument("不认识的参数“" + words[0] + "”。用 --help 查看用法。");
    options.mode = Mode::User;
    options.userCommand = words.size() > 1 ? words[1] : std::string();
    options.userName = words.size() > 2 ? words[2] : std::string();
    const std::string &command = options.userCommand;
    if (std::find(std::begin(userCommands), std::end(userCommands), command) == std::end(userCommands))
        throw std::invalid_argument("user 后面应是 add、set、passwd、remove、list 或 import。");
    if (words.size() <= 3)
        return;
    options.userFields.assign(words.begin() + 3, words.end());
    for (const std::string &field : options.userFields)
        if ((command != "add" && command != "set") || field.find('=') == field.npos)
            throw std::invalid_argument("不认识的参数“" + field + "”。用 --help 查看用法。");
}

void check(const Options &options)
{
    const bool needsConfig = options.mode == Mode::Serve || options.mode == Mode::CheckConfig;
    if (needsConfig && options.config.empty())
        throw std::invalid_argument("没有给出配置文件，请加上 --config 文件。用 --help 查看用法。");
    if (options.mode == Mode::Audit && options.config.empty() && options.auditLog.empty())
        throw std::invalid_argument("没有给出审计日志，请加上 --log 文件 或 --config 文件。");
    if (options.mode == Mode::Status && options.config.empty() && options.control.empty())
        throw std::invalid_argument("没有说是哪个服务，请加上 --config 文件 或 --control 文件。");
    if (options.mode != Mode::User)
        return;
    if (options.users.empty())
        throw std::invalid_argument("没有给出用户文件，请加上 --users 文件。");
    if (options.userName.empty() != (options.userCommand == "list"))
        throw std::invalid_argument(options.userName.empty() ? "没有给出用户名或文件。" : "user list 不需要用户名。");
}

} // namespace

std::string helpText()
{
    Options unused;
    return R"(用法：
  kelvara-server --config 文件                   按配置文件提供服务
  kelvara-server --config 文件 --check-config    只检查配置文件，不启动
  kelvara-server --demo [--database URL] [--port N] [--data 目录]
  kelvara-server user add 用户名 [字段=值 ...] --users 文件    增加用户，密码从终端输入
  kelvara-server user set 用户名 字段=值 ... --users 文件      更改用户的字段
  kelvara-server user passwd 用户名 --users 文件               更改密码
  kelvara-server user remove 用户名 --users 文件               删除用户
  kelvara-server user list --users 文件                        列出用户
  kelvara-server user import 文件.csv --users 文件             增加或更改表格中的用户，第一行是列名
  kelvara-server audit --config 文件 [--user 用户名] [--since 时间] [--to 时间] [--slow 秒] [--json]
  kelvara-server status --config 文件 [--json]           正在运行和排队的查询：谁、多久、多少行
  kelvara-server status --config 文件 --end 编号         结束其中一条

字段：
  employee_code 工号，employee_name 姓名，site 登录网点（不写则由用户选择），sites 可以查询的网点，
  screens 窗口和权限（如 frm_ManCome=101,frm_ManSend），databases 数据库，row_rules 行规则（on 或 off），
  must_change 须先改密码（yes 或 no），locked 停用（yes 或 no）。名单以逗号分隔，* 表示全部。

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
