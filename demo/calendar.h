#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace demo {

/// Seconds since 1970-01-01 00:00:00, both in local time.
using Moment = std::int64_t;

constexpr Moment minute = 60;
constexpr Moment hour = 60 * minute;
constexpr Moment day = 24 * hour;

constexpr Moment startOfDay(Moment moment) { return moment - moment % day; }
/// 0 is Sunday.
constexpr int weekday(Moment moment) { return static_cast<int>((moment / day + 4) % 7); }
/// The first day of the month before that of `moment`, at midnight.
Moment startOfPreviousMonth(Moment moment);
Moment localNow();

using MomentText = std::array<char, 19>;
/// yyyy-mm-dd hh:mm:ss
MomentText momentText(Moment moment);
/// Reads "yyyy-mm-dd hh:mm:ss", or "yyyy-mm-dd" as the last second of that day. Nothing when the text is no such date.
std::optional<Moment> parseMoment(std::string_view text);

} // namespace demo
