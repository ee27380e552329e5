#include "demo/text.h"

namespace demo {

std::string joined(std::initializer_list<std::string_view> parts)
{
    std::string result;
    for (const auto part : parts)
        result.append(part);
    return result;
}

std::string numbered(std::string_view prefix, std::uint64_t number, std::size_t width)
{
    const auto digits = std::to_string(number);
    return std::string(prefix).append(digits.size() < width ? width - digits.size() : 0, '0').append(digits);
}

} // namespace demo
