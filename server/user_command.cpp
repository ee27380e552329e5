#include "server/user_command.h"

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

} // namespace

void runUserCommand(const Options &options, std::istream &in, std::ostream &out)
{
    const std::string &command = options.userCommand;
    const std::string &name = options.userName;
    const bool isNew = command == "add" && !std::filesystem::exists(options.users);
    Users users = isNew ? Users() : readUsers(options.users);
    if (command == "list") {
        for (const auto &[user, hash] : users)
            out << user << '\n';
        return;
    }
    const bool exists = users.contains(name);
    if (command == "add" && exists)
        throw std::runtime_error("用户“" + name + "”已经存在；更改密码请用 user passwd");
    if (command != "add" && !exists)
        throw std::runtime_error("没有用户“" + name + "”；用 user list 查看全部用户");
    if (!isUserName(name))
        throw std::runtime_error("“" + name + "”不能作为用户名：最长 64 个字节，不能含有冒号，不能以 # 或空格开头");
    if (command == "remove")
        users.erase(name);
    else
        users[name] = hashPassword(newPassword(options, in));
    writeUsers(options.users, users);
    out << (command == "remove" ? "已删除用户 " : command == "add" ? "已增加用户 " : "已更改密码：") << name << '\n';
}

} // namespace server
