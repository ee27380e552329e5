#pragma once

#include <chrono>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace server {

/// Names and their password hashes, in alphabetical order.
using Users = std::map<std::string, std::string, std::less<>>;

/// A line per user, "name:hash"; lines that begin with # are comments. `name` is for the message. Throws std::runtime_error, which
/// names the line.
Users parseUsers(std::string_view text, const std::string &name);
Users readUsers(const std::filesystem::path &path);
/// Replaces the file; its owner and mode stay. Throws std::runtime_error, and the old file is still there then.
void writeUsers(const std::filesystem::path &path, const Users &users);
/// 1 to 64 bytes of UTF-8 without colon, blanks at the ends and control characters, not beginning with #.
bool isUserName(std::string_view name);

/// The file cannot be read, so that nobody can be told from somebody who has been removed.
class UsersUnknown : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A user of a running server.
struct Account {
    std::string hash;
    std::string generation; ///< see generationOf()
};

/// The users of a running server, as the file has them: a changed one is read again within a second. To be used from any thread.
class UserFile {
public:
    /// Throws std::runtime_error.
    explicit UserFile(std::filesystem::path path);
    /// Nothing for unknown users. Throws UsersUnknown while the file cannot be read.
    [[nodiscard]] std::optional<Account> find(std::string_view name);
    /// False while the file cannot be read.
    [[nodiscard]] bool isReadable();

private:
    using Clock = std::chrono::steady_clock;
    void refresh();
    void read();
    void take(const Users &users);

    std::filesystem::path m_path;
    std::mutex m_mutex;
    std::string m_stamp; ///< of the file as it was read
    std::map<std::string, Account, std::less<>> m_accounts;
    std::string m_fault; ///< why the file cannot be read
    Clock::time_point m_looked;
};

} // namespace server
