#pragma once

#include <string>
#include <string_view>

namespace server {

constexpr std::size_t longestPassword = 1024; ///< bytes
constexpr std::size_t shortestPassword = 8;
/// Whether it may be a new one.
constexpr bool isPassword(std::string_view text) { return text.size() >= shortestPassword && text.size() <= longestPassword; }

/// The password's argon2id hash in its usual text form, with a salt of its own: 19 MiB, 2 passes. Throws std::runtime_error.
std::string hashPassword(std::string_view password);
/// Takes as long as hashing.
bool passwordMatches(const std::string &hash, std::string_view password);

} // namespace server
