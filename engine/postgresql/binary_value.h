#pragma once

#include "packet/decimal.h"

#include <bit>

/// PostgreSQL's binary form of values, as its "send" functions write it: most significant byte first.
namespace engine::binary {

template <class Integer>
Integer integerAt(const char *bytes)
{
    std::make_unsigned_t<Integer> value = 0;
    for (std::size_t position = 0; position < sizeof value; ++position)
        value = std::make_unsigned_t<Integer>(value << 8 | std::uint8_t(bytes[position]));
    return Integer(value);
}

inline float floatAt(const char *bytes) { return std::bit_cast<float>(integerAt<std::int32_t>(bytes)); }
inline double doubleAt(const char *bytes) { return std::bit_cast<double>(integerAt<std::int64_t>(bytes)); }

/// A timestamp (microseconds since 2000-01-01) in whole seconds since 1970; fractions are dropped as in Oracle's DATE.
/// Throws std::invalid_argument for what lies outside of the calendar, infinity too.
std::int64_t timestampSeconds(std::int64_t microseconds);
/// A date (days since 2000-01-01) likewise.
std::int64_t dateSeconds(std::int32_t days);

/// A numeric of `size` bytes. Digits after the point that do not fit into 38 digits are cut off.
/// Throws std::invalid_argument for NaN, infinity and what does not fit before the point.
packet::Decimal decimalAt(const char *bytes, std::size_t size);

} // namespace engine::binary
