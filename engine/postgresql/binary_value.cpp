#include "engine/postgresql/binary_value.h"

#include "engine/calendar.h"

#include <algorithm>
#include <stdexcept>

namespace engine::binary {

namespace {

using packet::Int128;

constexpr std::int64_t epoch = 946684800; ///< 2000-01-01 in seconds since 1970
constexpr std::int64_t secondsPerDay = 86400;
constexpr std::int64_t microsecondsPerSecond = 1000000;
constexpr int mostDigits = 38;
constexpr int groupDigits = 4; ///< decimal digits in one group of a numeric
constexpr std::uint16_t negativeSign = 0x4000;
constexpr Int128 mostShifted = Int128(10'000'000'000'000'000) * 1'000'000'000'000'000'000; ///< one more group makes 38 digits

[[noreturn]] void overflow() { throw std::invalid_argument("ORA-01426: 数字溢出"); }

/// The header of a numeric and the groups behind it; the first group counts 10000^weight.
struct Numeric {
    Numeric(const char *bytes, std::size_t size)
        : groups(bytes + 8)
        , count(integerAt<std::int16_t>(bytes))
        , weight(integerAt<std::int16_t>(bytes + 2))
        , sign(integerAt<std::uint16_t>(bytes + 4))
        , scale(integerAt<std::uint16_t>(bytes + 6))
    {
        if (size < 8 + std::size_t(count) * 2)
            throw std::invalid_argument("数据库传来的数字不完整");
        if (sign != 0 && sign != negativeSign)
            throw std::invalid_argument("数据库传来了无法表示的数字（NaN 或无穷大）");
    }
    /// The group of 10000^power.
    int group(int power) const
    {
        const int position = weight - power;
        return position >= 0 && position < count ? integerAt<std::int16_t>(groups + position * 2) : 0;
    }

    const char *groups;
    int count;
    int weight;
    std::uint16_t sign;
    int scale;
};

} // namespace

std::int64_t timestampSeconds(std::int64_t microseconds)
{
    std::int64_t seconds = microseconds / microsecondsPerSecond;
    if (microseconds % microsecondsPerSecond < 0)
        --seconds;
    // Infinity lies outside too; adding the epoch to it does not overflow after the division.
    return inCalendar(seconds + epoch);
}

std::int64_t dateSeconds(std::int32_t days) { return inCalendar(days * secondsPerDay + epoch); }

packet::Decimal decimalAt(const char *bytes, std::size_t size)
{
    const Numeric numeric(bytes, size);
    if (numeric.count == 0)
        return {};
    if ((numeric.weight + 1) * groupDigits > mostDigits + groupDigits)
        overflow();
    const int wholeDigits = std::max(numeric.weight + 1, 0) * groupDigits;
    // Groups without a digit at the end are not sent, whatever the scale says.
    const int sentScale = std::max((numeric.count - numeric.weight - 1) * groupDigits, 0);
    const int scale = std::min({ numeric.scale, sentScale, std::max(mostDigits - wholeDigits, 0) });
    Int128 units = 0;
    for (int power = std::max(numeric.weight, 0); power >= 0; --power) {
        if (units >= mostShifted)
            overflow();
        units = units * 10000 + numeric.group(power);
    }
    int digits = 0;
    for (int power = -1; digits < scale; --power) {
        const int wanted = std::min(scale - digits, groupDigits);
        int unit = 10000;
        for (int digit = 0; digit < wanted; ++digit)
            unit /= 10;
        units = units * (10000 / unit) + (numeric.group(power) + unit / 2) / unit;
        digits += wanted;
    }
    return { numeric.sign == negativeSign ? -units : units, scale };
}

} // namespace engine::binary
