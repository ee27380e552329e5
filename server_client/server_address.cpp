#include "server_client/server_address.h"

#include <charconv>

namespace server_client {

namespace {

[[noreturn]] void refuse(std::string_view text)
{
    throw std::invalid_argument("服务器地址“" + std::string(text) + "”不对，请写作 https://主机:端口。");
}

std::uint16_t portOf(std::string_view digits, std::string_view text)
{
    std::uint16_t port = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), port);
    if (error != std::errc() || end != digits.data() + digits.size() || port == 0)
        refuse(text);
    return port;
}

} // namespace

ServerAddress ServerAddress::parse(std::string_view text)
{
    constexpr std::string_view scheme = "https://";
    std::string_view rest = text;
    if (rest.starts_with(scheme))
        rest.remove_prefix(scheme.size());
    if (rest.ends_with('/'))
        rest.remove_suffix(1);
    ServerAddress address;
    std::size_t hostEnd = rest.find(':');
    if (rest.starts_with('[')) {
        const std::size_t bracket = rest.find(']');
        if (bracket == std::string_view::npos)
            refuse(text);
        address.host = rest.substr(1, bracket - 1);
        hostEnd = bracket + 1 == rest.size() ? std::string_view::npos : bracket + 1;
    } else {
        address.host = rest.substr(0, hostEnd);
    }
    if (address.host.empty() || address.host.find_first_of("/@?# ") != std::string::npos)
        refuse(text);
    if (hostEnd != std::string_view::npos) {
        if (rest[hostEnd] != ':')
            refuse(text);
        address.port = portOf(rest.substr(hostEnd + 1), text);
    }
    return address;
}

std::string ServerAddress::text() const
{
    const bool bracketed = host.find(':') != std::string::npos;
    return (bracketed ? '[' + host + ']' : host) + ':' + std::to_string(port);
}

} // namespace server_client
