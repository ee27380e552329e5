#pragma once

#include <cstdint>
#include <stdexcept>

namespace engine {

/// A moment in seconds since 1970. Throws std::invalid_argument when it lies outside of the years 1 to 9999, which are all that a
/// column can hold.
inline std::int64_t inCalendar(std::int64_t seconds)
{
    constexpr std::int64_t first = -62135596800;
    constexpr std::int64_t last = 253402300799;
    if (seconds < first || seconds > last)
        throw std::invalid_argument("ORA-01841: (全) 年度值必须介于 1 和 9999 之间");
    return seconds;
}

} // namespace engine
