#pragma once

#include <chrono>
#include <iterator>
#include <optional>
#include <string_view>

namespace options {

/// Days as people name them; they mean others every day.
enum class NamedDays { Today, Yesterday, ThisWeek, LastWeek, ThisMonth, LastMonth, LastShift };

/// By the numbers of NamedDays, in the order in which they are offered.
inline constexpr std::string_view dayNames[] = { "今天", "昨天", "本周", "上周", "本月", "上月", "上班次" };

/// Nothing when no days have this name.
constexpr std::optional<NamedDays> daysNamed(std::string_view name)
{
    for (std::size_t index = 0; index < std::size(dayNames); ++index) {
        if (dayNames[index] == name)
            return NamedDays(index);
    }
    return std::nullopt;
}

struct DayRange {
    std::chrono::sys_days first;
    std::chrono::sys_days last;
};

/// What a name means today; weeks begin on Monday, and the last shift runs from noon of its first day to that of the next.
constexpr DayRange daysOf(NamedDays days, std::chrono::sys_days today)
{
    using namespace std::chrono;
    const sys_days monday = today - (weekday(today) - Monday);
    const year_month month = year_month_day(today).year() / year_month_day(today).month();
    const auto whole = [](year_month of) { return DayRange { sys_days(of / day(1)), sys_days(of / last) }; };
    constexpr std::chrono::days one(1);
    constexpr std::chrono::days week(7);
    switch (days) {
    case NamedDays::Today:
        return { today, today };
    case NamedDays::Yesterday:
        return { today - one, today - one };
    case NamedDays::ThisWeek:
        return { monday, monday + week - one };
    case NamedDays::LastWeek:
        return { monday - week, monday - one };
    case NamedDays::ThisMonth:
        return whole(month);
    case NamedDays::LastMonth:
        return whole(month - months(1));
    case NamedDays::LastShift:
        return { today - one, today };
    }
    return { today, today };
}

} // namespace options
