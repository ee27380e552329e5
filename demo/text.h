#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace demo {

/// The parts one after the other.
std::string joined(std::initializer_list<std::string_view> parts);
/// The prefix and then the number with leading zeros, `width` digits or more.
std::string numbered(std::string_view prefix, std::uint64_t number, std::size_t width);

} // namespace demo
