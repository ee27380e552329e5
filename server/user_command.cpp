#include "server/user_command.h"

#include "server/base/files.h"
#include "server/base/system.h"
#include "server/users/password.h"
#include "server/users/user_file.h"

#include <iostream>
#include <stdexcept>

namespace server {

namespace {

constexpr std::size_t shortestPassword = 8; ///< bytes

std::string newPassword(const Options &options, std::istream &in)
{
    std::string password;
    if (options.passwordFromInput) {
        std::getline(in, password);
    } else {
        password = askPassword("新密码：");
        if (askPassword("再输入一次：") != password)
            throw std::runtime_error("两次输入的密码不同，没有做任何更改");
    }
    if (password.size() < shortestPassword || password.size() > longestPassword)
        throw std::runtime_error("密码至少要 8 个字节，最多 1024 个字节，没有做任何更改");
    return password;
}

/// Why the command cannot be carried out; throws std::runtime_error then.
void check(const Options &options, const Users &users)
{
    const std::string &name = options.userName;
    const bool isNew = options.userCommand == "add";
    if (isNew && users.contains(name))
        throw std::runtime_error("用户“" + name + "”已经存在；更改密码请用 user passwd");
    if (!isNew && !users.contains(name))
        throw std::runtime_error("没有用户“" + name + "”；用 user list 查看全部用户");
    if (!isUserName(name))
        throw std::runtime_error("“" + name + "”不能作为用户名：最长 64 个字节，不能含有冒号，不能以 # 或空格开头");
}

Users usersOf(const Options &options)
{
    const bool isFirst = options.userCommand == "add" && !std::filesystem::exists(options.users);
    return isFirst ? Users() : readUsers(options.users);
}

/// The users are read again under the lock, as another command may have changed them while the password was typed.
void change(const Options &options, const std::string &hash)
{
    const FileLock lock(options.users);
    Users users = usersOf(options);
    check(options, users);
    if (hash.empty())
        users.erase(options.userName);
    else
        users[options.userName].hash = hash;
    writeUsers(options.users, users);
}

} // namespace

void runUserCommand(const Options &options, std::istream &in, std::ostream &out)
{
    const std::string &command = options.userCommand;
    const Users users = usersOf(options);
    if (command == "list") {
        for (const auto &[user, hash] : users)
            out << user << '\n';
        return;
    }
    check(options, users);
    change(options, command == "remove" ? std::string() : hashPassword(newPassword(options, in)));
    out << (command == "remove" ? "已删除用户 " : command == "add" ? "已增加用户 " : "已更改密码：") << options.userName << '\n';
    if (readersOf(options.users) == Readers::RootAlone)
        out << "注意：只有 root 能读取 " << options.users.string() << "。服务用别的帐户运行时，请执行 chown 帐户 " << options.users.string()
            << "，否则它拒绝所有登录\n";
}

} // namespace server
