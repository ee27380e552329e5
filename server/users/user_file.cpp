#include "server/users/user_file.h"

#include "server/base/log.h"
#include "server/base/system.h"

#include <algorithm>
#include <fstream>
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

Users readUsers(const fs::path &path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error("无法读取用户文件 " + path.string() + "；请检查路径和权限，或先用 kelvara-server user add 建立用户");
    Users users;
    int number = 0;
    for (std::string line; std::getline(file, line);) {
        ++number;
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (line.empty() || line.front() == '#')
            continue;
        const std::size_t colon = line.find(':');
        const std::string name = line.substr(0, colon);
        if (colon == std::string::npos || !isUserName(name) || line.compare(colon + 1, 10, "$argon2id$") != 0)
            throw std::runtime_error("用户文件 " + path.string() + " 第 " + std::to_string(number) + " 行应写作“用户名:密码散列”，请改正");
        users[name] = line.substr(colon + 1);
    }
    return users;
}

void writeUsers(const fs::path &path, const Users &users)
{
    fs::path beside = path;
    beside += ".new";
    createPrivateFile(beside);
    std::ofstream file(beside, std::ios::binary);
    for (const auto &[name, hash] : users)
        file << name << ':' << hash << '\n';
    file.close();
    if (!file)
        throw std::runtime_error("无法写入 " + beside.string() + "，请检查磁盘空间和目录权限");
    fs::rename(beside, path);
}

UserFile::UserFile(fs::path path)
    : m_path(std::move(path))
    , m_stamp(stamp())
    , m_users(readUsers(m_path))
    , m_looked(Clock::now())
{
}

std::optional<std::string> UserFile::hashOf(std::string_view name)
{
    const std::lock_guard lock(m_mutex);
    refresh();
    const auto found = m_users.find(name);
    return found == m_users.end() ? std::nullopt : std::optional(found->second);
}

UserFile::Stamp UserFile::stamp() const
{
    std::error_code ignored;
    return { fs::last_write_time(m_path, ignored), fs::file_size(m_path, ignored) };
}

void UserFile::refresh()
{
    if (Clock::now() - m_looked < lookEvery)
        return;
    m_looked = Clock::now();
    const Stamp now = stamp();
    if (now == m_stamp)
        return;
    m_stamp = now;
    try {
        m_users = readUsers(m_path);
        logLine("用户文件已重新读入，共 " + std::to_string(m_users.size()) + " 个用户");
    } catch (const std::exception &error) {
        logLine(std::string("用户文件有变动但不能用，仍用原来的用户：") + error.what());
    }
}

} // namespace server
