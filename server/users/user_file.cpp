#include "server/users/user_file.h"

#include "server/base/files.h"
#include "server/base/log.h"
#include "server/users/token.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace server {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t longestName = 64;
constexpr auto lookEvery = std::chrono::seconds(1);

} // namespace

bool isUserName(std::string_view name)
{
    const auto isForbidden = [](char byte) { return (byte >= 0 && byte < ' ') || byte == ':' || byte == '\x7f'; };
    return !name.empty() && name.size() <= longestName && name.front() != '#' && name.front() != ' ' && name.back() != ' '
        && std::none_of(name.begin(), name.end(), isForbidden);
}

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
        const std::size_t colon = std::min(line.find(':'), line.size());
        const auto user = line.substr(0, colon);
        const auto hash = line.substr(std::min(colon + 1, line.size()));
        const bool isPlain = std::all_of(hash.begin(), hash.end(), [](char byte) { return byte > ' ' && byte < '\x7f'; });
        if (!isUserName(user) || !hash.starts_with("$argon2id$") || !isPlain || !users.emplace(user, hash).second)
            throw std::runtime_error(
                "用户文件 " + name + " 第 " + std::to_string(number) + " 行应写作“用户名:密码散列”，每个用户一行，请改正");
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

void writeUsers(const fs::path &path, const Users &users)
{
    std::string text;
    for (const auto &[name, hash] : users)
        text += name + ':' + hash + '\n';
    replaceFile(path, text);
}

UserFile::UserFile(fs::path path)
    : m_path(std::move(path))
    , m_stamp(fileStamp(m_path))
    , m_looked(Clock::now())
{
    take(readUsers(m_path));
}

std::optional<Account> UserFile::find(std::string_view name)
{
    const std::lock_guard lock(m_mutex);
    refresh();
    if (!m_fault.empty())
        throw UsersUnknown(m_fault);
    const auto found = m_accounts.find(name);
    return found == m_accounts.end() ? std::nullopt : std::optional(found->second);
}

bool UserFile::isReadable()
{
    const std::lock_guard lock(m_mutex);
    refresh();
    return m_fault.empty();
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
        take(readUsers(m_path));
        m_stamp = stamp;
        m_fault.clear();
        logLine("用户文件已重新读入，共 " + std::to_string(m_accounts.size()) + " 个用户");
    } catch (const std::exception &error) {
        if (m_fault != error.what())
            logLine(std::string("用户文件不能用，在它恢复之前拒绝所有登录和查询：") + error.what());
        m_fault = error.what();
    }
}

/// The generations are made here once, as every request asks for one.
void UserFile::take(const Users &users)
{
    m_accounts.clear();
    for (const auto &[name, hash] : users)
        m_accounts.emplace(name, Account { hash, generationOf(hash) });
}

} // namespace server
