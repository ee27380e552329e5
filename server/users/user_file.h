#pragma once

#include <chrono>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace server {

/// Names and their password hashes, in alphabetical order.
using Users = std::map<std::string, std::string, std::less<>>;

/// A line per user, "name:hash"; lines that begin with # are comments. Throws std::runtime_error, which names the line.
Users readUsers(const std::filesystem::path &path);
/// Writes a new file beside the old one and puts it in its place; readable for its owner alone. Throws std::runtime_error.
void writeUsers(const std::filesystem::path &path, const Users &users);
/// 1 to 64 bytes of UTF-8 without colon, blanks at the ends and control characters, not beginning with #.
bool isUserName(std::string_view name);

/// The users of a running server. A changed file is read again; while it is broken, the users before it stay.
/// To be used from any thread.
class UserFile {
public:
    /// Throws std::runtime_error.
    explicit UserFile(std::filesystem::path path);
    /// Nothing for unknown users.
    std::optional<std::string> hashOf(std::string_view name);
    bool contains(std::string_view name) { return hashOf(name).has_value(); }

private:
    using Clock = std::chrono::steady_clock;
    struct Stamp {
        std::filesystem::file_time_type time;
        std::uintmax_t size = 0;
        bool operator==(const Stamp &) const = default;
    };
    Stamp stamp() const;
    void refresh();

    std::filesystem::path m_path;
    std::mutex m_mutex;
    Stamp m_stamp;
    Users m_users;
    Clock::time_point m_looked;
};

} // namespace server
