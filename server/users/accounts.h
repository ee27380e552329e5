#pragma once

#include "engine/reader.h"
#include "server/users/account.h"

#include <chrono>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace server {

/// Accounts by their names, in alphabetical order.
using Users = std::map<std::string, Account, std::less<>>;

/// An account of a running server.
struct LiveAccount {
    Account account {};
    // Made once, as every request asks for them:
    std::string generation {}; ///< see generationOf()
    std::shared_ptr<const engine::Reader> reader {}; ///< null: no rules of tables apply
};
using AccountPtr = std::shared_ptr<const LiveAccount>;
using LiveAccounts = std::map<std::string, AccountPtr, std::less<>>;
LiveAccounts liveAccounts(const Users &users);

/// The accounts cannot be read, so that nobody can be told from somebody who has been removed.
class AccountsUnknown : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Where a running server has its accounts from. To be used from any thread.
class Accounts {
public:
    Accounts() = default;
    Accounts(const Accounts &) = delete;
    virtual ~Accounts() = default;

    /// Null for unknown names. Throws AccountsUnknown.
    [[nodiscard]] virtual AccountPtr find(std::string_view name) = 0;
    /// False while find() throws.
    [[nodiscard]] virtual bool isReadable() = 0;
    /// How old the accounts are beyond what they should be; a server that works has zero.
    [[nodiscard]] virtual std::chrono::seconds overdue() { return {}; }

    /// Whether setPassword() works here.
    [[nodiscard]] virtual bool keepsPasswords() const { return false; }
    /// Takes the hash of a new password for good, unless the account's is not `before` any more. Throws std::runtime_error, and nothing
    /// has changed then.
    virtual void setPassword(const std::string &name, const std::string &before, const std::string &hash);
};

} // namespace server
