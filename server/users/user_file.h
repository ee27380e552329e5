#pragma once

#include "server/users/accounts.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>

namespace server {

/// A line per user, see accountLine(); lines that begin with # are comments. `name` is for the message. Throws std::runtime_error,
/// which names the line.
Users parseUsers(std::string_view text, const std::string &name);
Users readUsers(const std::filesystem::path &path);
/// The text of a users file, with a comment that explains its lines.
std::string usersText(const Users &users);
/// Replaces the file; its owner and mode stay. Throws std::runtime_error, and the old file is still there then.
void writeUsers(const std::filesystem::path &path, const Users &users);
/// Reads the file, hands its users over to be changed, and writes them, while others who do the same wait. Throws std::runtime_error and
/// what `change` throws; the file is as before then. Returns what was written.
enum class MissingFile { IsEmpty, IsAFault };
Users changeUsers(const std::filesystem::path &path, MissingFile missing, const std::function<void(Users &)> &change);

/// The users of a running server, as the file has them: a changed one is read again within a second.
class UserFile : public Accounts {
public:
    /// Throws std::runtime_error.
    explicit UserFile(std::filesystem::path path);
    [[nodiscard]] AccountPtr find(std::string_view name) override;
    [[nodiscard]] bool isReadable() override;
    [[nodiscard]] bool keepsPasswords() const override { return true; }
    void setPassword(const std::string &name, const std::string &before, const std::string &hash) override;

private:
    using Clock = std::chrono::steady_clock;
    void refresh();
    void read();

    const std::filesystem::path m_path;
    std::mutex m_mutex;
    std::string m_stamp; ///< of the file as it was read
    LiveAccounts m_accounts;
    std::string m_fault; ///< why the file cannot be read
    Clock::time_point m_looked;
};

} // namespace server
