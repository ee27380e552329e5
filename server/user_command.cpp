#include "server/user_command.h"

#include "server/base/files.h"
#include "server/base/system.h"
#include "server/user_import.h"
#include "server/users/password.h"
#include "server/users/user_file.h"

#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>

namespace server {

namespace {

constexpr std::uintmax_t largestImport = 16 << 20; ///< bytes

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
    if (!isPassword(password))
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

MissingFile missingFile(const Options &options)
{
    return options.userCommand == "add" || options.userCommand == "import" ? MissingFile::IsEmpty : MissingFile::IsAFault;
}

Users usersOf(const Options &options)
{
    const bool isFirst = missingFile(options) == MissingFile::IsEmpty && !std::filesystem::exists(options.users);
    return isFirst ? Users() : readUsers(options.users);
}

void setFields(Account &account, const std::vector<std::string> &fields)
try {
    for (const std::string &field : fields) {
        const std::size_t equals = field.find('=');
        setAccountField(account, std::string_view(field).substr(0, equals), std::string_view(field).substr(equals + 1));
    }
    checkAccount(account);
} catch (const std::invalid_argument &error) {
    throw std::runtime_error(std::string(error.what()) + "；没有做任何更改");
}

/// The users are read again under the lock, as another command may have changed them while the password was typed.
void change(const Options &options, std::istream &in)
{
    const std::string &command = options.userCommand;
    Account tried;
    setFields(tried, command == "add" ? options.userFields : std::vector<std::string>());
    const std::string hash = command == "add" || command == "passwd" ? hashPassword(newPassword(options, in)) : std::string();
    changeUsers(options.users, missingFile(options), [&](Users &users) {
        check(options, users);
        if (command == "remove") {
            users.erase(options.userName);
            return;
        }
        Account &account = users[options.userName];
        setFields(account, options.userFields);
        if (!hash.empty())
            account.hash = hash;
    });
}

UserImport readImport(const std::filesystem::path &path)
{
    std::error_code unreadable;
    if (std::filesystem::file_size(path, unreadable) > largestImport && !unreadable)
        throw std::runtime_error(path.string() + " 太大，最多 16 MiB，请分成几个文件");
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    if (!file)
        throw std::runtime_error("无法读取 " + path.string() + "，请检查路径和权限");
    try {
        return UserImport(text.str());
    } catch (const std::runtime_error &error) {
        throw std::runtime_error(path.string() + " " + error.what());
    }
}

/// The passwords are told only once the users are safe on the disk.
void import(const Options &options, std::ostream &out)
{
    UserImport table = readImport(options.userName);
    table.hashPasswords(usersOf(options));
    changeUsers(options.users, missingFile(options), [&](Users &users) { table.apply(users); });
    out << "已导入 " << table.size() << " 个用户\n";
    if (!table.firstPasswords().empty())
        out << "下面的初始密码只显示这一次，用户首次登录时须更改：\n";
    for (const FirstPassword &first : table.firstPasswords())
        out << first.user << '\t' << first.password << '\n';
}

void list(const Users &users, std::ostream &out)
{
    for (const auto &[name, account] : users) {
        Account shown = account;
        shown.hash.clear();
        const std::string fields = accountLine({}, shown).substr(1);
        out << name << (fields.empty() ? "" : "\t" + fields.substr(1)) << '\n';
    }
}

constexpr std::pair<std::string_view, std::string_view> successes[] = {
    { "add", "已增加用户 " },
    { "set", "已更改用户 " },
    { "passwd", "已更改密码：" },
    { "remove", "已删除用户 " },
};

} // namespace

void runUserCommand(const Options &options, std::istream &in, std::ostream &out)
{
    const std::string &command = options.userCommand;
    if (command == "list")
        return list(readUsers(options.users), out);
    if (command == "import") {
        import(options, out);
    } else {
        check(options, usersOf(options));
        change(options, in);
    }
    for (const auto &[done, text] : successes)
        if (command == done)
            out << text << options.userName << '\n';
    if (readersOf(options.users) == Readers::RootAlone)
        out << "注意：只有 root 能读取 " << options.users.string() << "。服务用别的帐户运行时，请执行 chown 帐户 " << options.users.string()
            << "，否则它拒绝所有登录\n";
}

} // namespace server
