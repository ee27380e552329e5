#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

/// Statements for application servers over HTTPS, and the results that come back.
namespace server_client {

enum class Failure {
    Unreachable, ///< no connection, or it was lost, or the server is shutting down: another one may do
    Certificate, ///< the server is not who it should be
    Login, ///< the user or the password is wrong
    SessionEnded, ///< nobody is logged in, or not any more: the message says why
    Refused, ///< the server or its database refused the statement
    Result, ///< the result is damaged or larger than is taken; asking again would only cost the same once more
    Cancelled,
};

/// what() is Chinese and says what to do.
class Error : public std::runtime_error {
public:
    Error(Failure failure, const std::string &message)
        : std::runtime_error(message)
        , m_failure(failure)
    {
    }
    Failure failure() const { return m_failure; }

private:
    Failure m_failure;
};

struct ServerAddress {
    std::string host;
    std::uint16_t port = 8866;

    /// Reads "https://host:port", "host:port" or "host"; an IPv6 address stands in brackets. Throws std::invalid_argument.
    static ServerAddress parse(std::string_view text);
    /// "host:port", as a person reads it.
    std::string text() const;
};

} // namespace server_client
