#pragma once

#include <algorithm>
#include <string_view>

namespace options {

/// Without the blanks, tabs and carriage returns at both ends.
inline std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r";
    const std::size_t begin = text.find_first_not_of(blanks);
    return begin == text.npos ? std::string_view() : text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

/// Takes the text up to the next separator off the front of `rest`, trimmed.
inline std::string_view nextPart(std::string_view &rest, char separator)
{
    const std::size_t end = std::min(rest.find(separator), rest.size());
    const auto part = trimmed(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return part;
}

} // namespace options
