#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace server {

/// What a client shows with each request. Nothing of it is kept on the server.
struct Token {
    std::string user;
    std::int64_t expires = 0; ///< seconds since 1970
};

/// Signs tokens and checks them; servers with the same secret accept each other's.
class TokenKey {
public:
    static constexpr std::size_t shortestSecret = 32; ///< bytes

    explicit TokenKey(std::string secret)
        : m_secret(std::move(secret))
    {
    }
    /// Hexadecimal: version, expiry, a random number and the user; then their HMAC-SHA256.
    std::string sign(const Token &token) const;
    /// Nothing unless the text is exactly what sign() gave and has not expired.
    std::optional<Token> verify(std::string_view text, std::int64_t now) const;

private:
    std::string signatureOf(std::string_view payload) const;

    std::string m_secret;
};

/// `count` bytes that nobody can guess, in hexadecimal.
std::string randomHex(std::size_t count);

} // namespace server
