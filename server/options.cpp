#include "server/options.h"

#include <charconv>
#include <stdexcept>

namespace server {

const std::string_view helpText = R"(用法：
  kelvara-server --config 文件                   按配置文件提供服务
  kelvara-server --config 文件 --check-config    只检查配置文件，不启动
  kelvara-server --demo [--database URL] [--port N] [--data 目录]
                                                 在本机演示：自签名证书，用户 demo，密码打印在屏幕上
  kelvara-server user add 用户名 --users 文件    增加用户，密码从终端输入
  kelvara-server user passwd 用户名 --users 文件 更改密码
  kelvara-server user remove 用户名 --users 文件 删除用户
  kelvara-server user list --users 文件          列出用户
  kelvara-server --help | --version

选项：
  --password-stdin   密码从标准输入的第一行读取
  --database URL     演示用的数据库，如 sqlite:parcels.db；默认为数据目录中最新的 demo-*.db
  --port N           演示用的端口，默认 8866；0 表示任选一个
  --data 目录        演示用的数据目录，默认 run-data

信号：SIGTERM 停止接受新请求，等正在运行的查询完成后退出；SIGHUP 重新读取证书并重新打开审计日志。
)";

namespace {

/// Takes the arguments one by one.
class Reader {
public:
    explicit Reader(std::span<const std::string> arguments)
        : m_rest(arguments)
    {
    }

    Options run()
    {
        if (m_rest.empty())
            throw std::invalid_argument("没有给出配置文件。用 --help 查看用法。");
        if (m_rest.front() == "user")
            readUserCommand();
        while (!m_rest.empty())
            readOption(next());
        check();
        return m_options;
    }

private:
    const std::string &next()
    {
        const std::string &argument = m_rest.front();
        m_rest = m_rest.subspan(1);
        return argument;
    }
    const std::string &valueOf(const std::string &option)
    {
        if (m_rest.empty())
            throw std::invalid_argument(option + " 后面缺少取值。");
        return next();
    }

    void readUserCommand()
    {
        next();
        m_options.mode = Options::Mode::User;
        m_options.userCommand = m_rest.empty() ? std::string() : next();
        const std::string &command = m_options.userCommand;
        if (command != "add" && command != "passwd" && command != "remove" && command != "list")
            throw std::invalid_argument("user 后面应是 add、passwd、remove 或 list。");
    }

    void readOption(const std::string &name)
    {
        using Mode = Options::Mode;
        if (name == "--help")
            m_options.mode = Mode::Help;
        else if (name == "--version")
            m_options.mode = Mode::Version;
        else if (name == "--config")
            m_options.config = valueOf(name);
        else if (name == "--check-config")
            m_options.mode = Mode::CheckConfig;
        else if (name == "--demo")
            m_options.mode = Mode::Demo;
        else if (name == "--database")
            m_options.database = valueOf(name);
        else if (name == "--port")
            m_options.port = portOf(valueOf(name));
        else if (name == "--data")
            m_options.data = valueOf(name);
        else if (name == "--users")
            m_options.users = valueOf(name);
        else if (name == "--password-stdin")
            m_options.passwordFromInput = true;
        else if (m_options.mode == Mode::User && m_options.userName.empty() && !name.starts_with("--"))
            m_options.userName = name;
        else
            throw std::invalid_argument("没有“" + name + "”这个选项。用 --help 查看全部选项。");
    }

    static std::uint16_t portOf(const std::string &text)
    {
        std::uint16_t port = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
        if (error != std::errc() || end != text.data() + text.size())
            throw std::invalid_argument("--port 要求 0 到 65535 的整数，不能是“" + text + "”。");
        return port;
    }

    void check() const
    {
        using Mode = Options::Mode;
        const bool needsConfig = m_options.mode == Mode::Serve || m_options.mode == Mode::CheckConfig;
        if (needsConfig && m_options.config.empty())
            throw std::invalid_argument("没有给出配置文件，请加上 --config 文件。");
        if (m_options.mode != Mode::User)
            return;
        if (m_options.users.empty())
            throw std::invalid_argument("没有给出用户文件，请加上 --users 文件。");
        if (m_options.userName.empty() != (m_options.userCommand == "list"))
            throw std::invalid_argument(m_options.userName.empty() ? "没有给出用户名。" : "user list 不需要用户名。");
    }

    std::span<const std::string> m_rest;
    Options m_options;
};

} // namespace

Options readOptions(std::span<const std::string> arguments) { return Reader(arguments).run(); }

} // namespace server
