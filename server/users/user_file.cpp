#include "server/users/user_file.h"

#include "server/base/files.h"
#include "server/base/log.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace server {

namespace fs = std::filesystem;

namespace {

constexpr auto lookEvery = std::chrono::seconds(1);

constexpr auto explanation
    = R"(# kelvara-server 的用户，每行一个：用户名:密码散列，后面可以有“:字段=值”。名单以逗号分隔，* 表示全部；值中的冒号写作 %3A。
#   employee_code 工号   employee_name 姓名   site 登录网点（不写则由用户选择）   sites 可以查询的网点（* 要求 row_rules=off）
#   screens 窗口和权限，如 frm_ManCome=101,frm_ManSend（不写为 *）   databases 数据库（不写为 *）   row_rules 行规则 on/off（不写为 on）
#   must_change 须先改密码 yes/no   locked 停用 yes/no
# 请用 kelvara-server user 命令更改；它会重写本文件，另外的注释不保留。
)";

} // namespace

Users parseUsers(std::string_view text, const std::string &name)
{
    Users users;
    for (int number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        if (line.empty() || line.front() == '#')
            continue;
        const auto place = "用户文件 " + name + " 第 " + std::to_string(number) + " 行";
        try {
            if (!users.insert(parseAccountLine(line)).second)
                throw std::invalid_argument("的用户名前面已经有了，每个用户一行");
        } catch (const std::invalid_argument &error) {
            throw std::runtime_error(place + error.what() + "，请改正");
        }
    }
    return users;
}

Users readUsers(const fs::path &path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    if (!file.is_open() || text.bad())
        throw std::runtime_error("无法读取用户文件 " + path.string() + "；请检查路径和权限，或先用 kelvara-server user add 建立用户");
    return parseUsers(text.str(), path.string());
}

std::string usersText(const Users &users)
{
    std::string text = explanation;
    for (const auto &[name, account] : users)
        text += accountLine(name, account) + '\n';
    return text;
}

void writeUsers(const fs::path &path, const Users &users) { replaceFile(path, usersText(users)); }

Users changeUsers(const fs::path &path, MissingFile missing, const std::function<void(Users &)> &change)
{
    const FileLock lock(path);
    Users users = missing == MissingFile::IsEmpty && !fs::exists(path) ? Users() : readUsers(path);
    change(users);
    writeUsers(path, users);
    return users;
}

UserFile::UserFile(fs::path path)
    : m_path(std::move(path))
    , m_stamp(fileStamp(m_path))
    , m_accounts(liveAccounts(readUsers(m_path)))
    , m_looked(Clock::now())
{
}

AccountPtr UserFile::find(std::string_view name)
{
    const std::lock_guard lock(m_mutex);
    refresh();
    if (!m_fault.empty())
        throw AccountsUnknown(m_fault);
    const auto found = m_accounts.find(name);
    return found == m_accounts.end() ? nullptr : found->second;
}

bool UserFile::isReadable()
{
    const std::lock_guard lock(m_mutex);
    refresh();
    return m_fault.empty();
}

void UserFile::setPassword(const std::string &name, const std::string &before, const std::string &hash)
{
    const Users users = changeUsers(m_path, MissingFile::IsAFault, [&](Users &known) {
        const auto user = known.find(name);
        if (user == known.end() || user->second.hash != before)
            throw std::runtime_error("帐户刚刚被别人更改过，密码没有更改");
        user->second.hash = hash;
        user->second.mustChange = false;
    });
    const std::lock_guard lock(m_mutex);
    m_accounts = liveAccounts(users);
}

void UserFile::refresh()
{
    if (Clock::now() - m_looked < lookEvery)
        return;
    m_looked = Clock::now();
    if (!m_fault.empty() || fileStamp(m_path) != m_stamp)
        read();
}

/// The stamp is taken first, so that what changes meanwhile is seen the next time.
void UserFile::read()
{
    const std::string stamp = fileStamp(m_path);
    try {
        m_accounts = liveAccounts(readUsers(m_path));
        m_stamp = stamp;
        m_fault.clear();
        logLine("用户文件已重新读入，共 " + std::to_string(m_accounts.size()) + " 个用户");
    } catch (const std::exception &error) {
        if (m_fault != error.what())
            logLine(std::string("用户文件不能用，在它恢复之前拒绝所有登录和查询：") + error.what());
        m_fault = error.what();
    }
}

} // namespace server
