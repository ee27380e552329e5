#pragma once

#include "server/base/audit_log.h"
#include "server/base/fair_pool.h"
#include "server/base/metrics.h"
#include "server/http/response.h"
#include "server/users/accounts.h"
#include "server/users/login_throttle.h"
#include "server/users/token.h"

#include <functional>

namespace server {

/// Turns names and passwords into tokens, and passwords into new ones. To be used from any thread.
class Logins {
public:
    using Answer = std::function<void(Response)>;

    /// `waiting` passwords at most wait to be compared, half of them from one address. What `clientJson` says at the time is told with each
    /// token.
    Logins(Accounts &accounts, const TokenKey &key, std::chrono::seconds tokenLife, std::size_t waiting,
        std::function<std::string()> clientJson, Metrics &metrics, AuditLog &auditLog);

    /// Takes the body of a login and calls `answer` once, at once or on another thread.
    void login(const std::string &body, const std::string &address, Answer answer);
    /// Likewise the body of a change of the password of `user`, who has shown a token.
    void changePassword(const std::string &user, const std::string &body, const std::string &address, Answer answer);

private:
    struct Attempt {
        std::string user;
        std::string password;
        std::string address;
        std::string group; ///< of the address
        std::string newPassword {}; ///< empty: a login
    };
    void submit(const Attempt &attempt, const Answer &answer);
    Response compare(const Attempt &attempt);
    Response wrong(const Attempt &attempt, const AccountPtr &account);
    Response change(const Attempt &attempt, const LiveAccount &account);
    void log(const Attempt &attempt, const std::string &user, std::string_view result);
    void finish(const Attempt &attempt, LoginThrottle::Result result);
    Response tokenFor(const std::string &user, const LiveAccount &account) const;

    Accounts &m_accounts;
    const TokenKey &m_key;
    const std::chrono::seconds m_tokenLife;
    const std::function<std::string()> m_clientJson;
    Metrics &m_metrics;
    AuditLog &m_auditLog;
    LoginThrottle m_throttle;
    FairPool m_pool; ///< the last member: its workers use the others
};

} // namespace server
