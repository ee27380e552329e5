#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace server {

/// The address as it is usually written, an IPv4 one inside IPv6 as itself. Nothing when the text is no address.
[[nodiscard]] std::optional<std::string> addressOf(std::string_view text);

/// What counts as one client: an IPv4 address, or the network of 64 bits that one line of IPv6 has for itself.
[[nodiscard]] std::string addressGroup(const std::string &address);

[[nodiscard]] bool isLoopback(const std::string &address);

} // namespace server
