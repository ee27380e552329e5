#include "demo/calendar.h"

#include <charconv>
#include <chrono>
#include <ctime>

namespace demo {
namespace {

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::year_month_day;

year_month_day dateOf(Moment moment) { return year_month_day(sys_days(days(moment / day))); }
Moment momentOf(year_month_day date) { return sys_days(date).time_since_epoch().count() * day; }

void writeDigits(char *end, unsigned value, int count)
{
    for (; count > 0; --count, value /= 10)
        *--end = static_cast<char>('0' + value % 10);
}

std::optional<unsigned> digits(std::string_view text, std::size_t from, std::size_t count)
{
    unsigned value = 0;
    const auto end = text.data() + from + count;
    const auto [stop, error] = std::from_chars(text.data() + from, end, value);
    if (error != std::errc() || stop != end)
        return std::nullopt;
    return value;
}

bool hasShape(std::string_view text, std::string_view shape)
{
    if (text.size() != shape.size())
        return false;
    for (std::size_t at = 0; at < shape.size(); ++at)
        if (shape[at] == '0' ? text[at] < '0' || text[at] > '9' : text[at] != shape[at])
            return false;
    return true;
}

} // namespace

Moment startOfPreviousMonth(Moment moment)
{
    const auto date = dateOf(moment);
    return momentOf((date.year() / date.month() - std::chrono::months(1)) / 1);
}

Moment localNow()
{
    const std::time_t now = std::time(nullptr);
    const std::tm local = *std::localtime(&now);
    const auto date = std::chrono::year(local.tm_year + 1900) / (local.tm_mon + 1) / local.tm_mday;
    return momentOf(date) + local.tm_hour * hour + local.tm_min * minute + local.tm_sec;
}

MomentText momentText(Moment moment)
{
    MomentText text { '0', '0', '0', '0', '-', '0', '0', '-', '0', '0', ' ', '0', '0', ':', '0', '0', ':', '0', '0' };
    const auto date = dateOf(moment);
    const auto second = static_cast<unsigned>(moment % day);
    writeDigits(text.data() + 4, static_cast<unsigned>(static_cast<int>(date.year())), 4);
    writeDigits(text.data() + 7, static_cast<unsigned>(date.month()), 2);
    writeDigits(text.data() + 10, static_cast<unsigned>(date.day()), 2);
    writeDigits(text.data() + 13, second / 3600, 2);
    writeDigits(text.data() + 16, second / 60 % 60, 2);
    writeDigits(text.data() + 19, second % 60, 2);
    return text;
}

std::optional<Moment> parseMoment(std::string_view text)
{
    const bool hasTime = hasShape(text, "0000-00-00 00:00:00");
    if (!hasTime && !hasShape(text, "0000-00-00"))
        return std::nullopt;
    const auto date = std::chrono::year(static_cast<int>(*digits(text, 0, 4))) / static_cast<int>(*digits(text, 5, 2))
        / static_cast<int>(*digits(text, 8, 2));
    if (!date.ok() || date.year() < std::chrono::year(1980))
        return std::nullopt;
    if (!hasTime)
        return momentOf(date) + day - 1;
    const unsigned hours = *digits(text, 11, 2);
    const unsigned minutes = *digits(text, 14, 2);
    const unsigned seconds = *digits(text, 17, 2);
    if (hours > 23 || minutes > 59 || seconds > 59)
        return std::nullopt;
    return momentOf(date) + hours * hour + minutes * minute + seconds;
}

} // namespace demo
