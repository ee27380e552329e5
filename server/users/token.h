#pragma once

#include "server/base/system.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace server {

/// What a client shows with each request. Nothing of it is kept on the server.
struct Token {
    std::string user;
    std::int64_t expires = 0; ///< seconds since 1970
    std::string generation; ///< of the user's account when the token was made, see generationOf()
};

/// Eight bytes that tell one password of an account from the next, also when it is the same one set again. They give nothing of the
/// hash away.
[[nodiscard]] std::string generationOf(std::string_view passwordHash);

/// Signs tokens and checks them; servers with the same secret accept each other's.
class TokenKey {
public:
    static constexpr std::size_t shortestSecret = 32; ///< bytes

    /// `clock` gives the seconds since 1970.
    explicit TokenKey(std::string secret, std::function<std::int64_t()> clock = secondsNow)
        : m_secret(std::move(secret))
        , m_clock(std::move(clock))
    {
    }
    /// The time by which tokens end.
    [[nodiscard]] std::int64_t now() const { return m_clock(); }
    /// Hexadecimal: version, expiry, a random number, the generation and the user; then their HMAC-SHA256.
    [[nodiscard]] std::string sign(const Token &token) const;
    /// Nothing unless the text is exactly what sign() gave. Whether it has expired is for the caller to say.
    [[nodiscard]] std::optional<Token> verify(std::string_view text) const;

private:
    std::string signatureOf(std::string_view payload) const;

    std::string m_secret;
    std::function<std::int64_t()> m_clock;
};

/// `count` bytes that nobody can guess, in hexadecimal.
std::string randomHex(std::size_t count);

} // namespace server
