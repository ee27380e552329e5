#include "server/base/address.h"

#include <boost/asio/ip/address.hpp>

#include <algorithm>

namespace server {

namespace ip = boost::asio::ip;

namespace {

constexpr std::ptrdiff_t networkBytes = 8;

std::optional<ip::address> parsed(std::string_view text)
{
    boost::system::error_code error;
    const ip::address address = ip::make_address(std::string(text), error);
    if (error)
        return std::nullopt;
    if (address.is_v6() && address.to_v6().is_v4_mapped())
        return ip::make_address_v4(ip::v4_mapped, address.to_v6());
    return address;
}

} // namespace

std::optional<std::string> addressOf(std::string_view text)
{
    const auto address = parsed(text);
    return address ? std::optional(address->to_string()) : std::nullopt;
}

std::string addressGroup(const std::string &address)
{
    const auto read = parsed(address);
    if (!read || read->is_v4())
        return address;
    ip::address_v6::bytes_type bytes = read->to_v6().to_bytes();
    std::fill(bytes.begin() + networkBytes, bytes.end(), static_cast<unsigned char>(0));
    return ip::address_v6(bytes).to_string() + "/64";
}

bool isLoopback(const std::string &address)
{
    const auto read = parsed(address);
    return read && read->is_loopback();
}

} // namespace server
