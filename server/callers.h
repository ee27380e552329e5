#pragma once

#include "server/http/request.h"
#include "server/http/response.h"
#include "server/users/accounts.h"
#include "server/users/token.h"

#include <cstdint>
#include <functional>
#include <string>
#include <variant>

namespace server {

/// The user that a request comes from.
struct Caller {
    std::string user {};
    AccountPtr account {}; ///< never null
    std::int64_t expires = 0; ///< of the token, seconds since 1970
};

/// Tells by its token who sends a request. To be used from any thread.
class Callers {
public:
    Callers(const TokenKey &key, Accounts &accounts)
        : m_key(key)
        , m_accounts(accounts)
    {
    }
    /// The user, as long as the account is still the one that got the token, or why there is none.
    std::variant<Caller, Response> who(const Request &request);
    /// The same, but whoever must change the password first is refused.
    std::variant<Caller, Response> admitted(const Request &request);
    /// False once the account has ended, has another password, is locked, or has lost the database. True while nobody can say.
    [[nodiscard]] bool mayGoOn(const Caller &caller, std::string_view database);

private:
    const TokenKey &m_key;
    Accounts &m_accounts;
};

} // namespace server
