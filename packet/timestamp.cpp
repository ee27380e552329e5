#include "packet/packet.h"

#include <chrono>

namespace packet {

namespace {

constexpr std::int64_t secondsPerDay = 86400;

/// Two or four digits at `position`, or -1.
int digitsAt(std::string_view text, std::size_t position, std::size_t count)
{
    int value = 0;
    for (const char digit : text.substr(position, count)) {
        if (digit < '0' || digit > '9')
            return -1;
        value = value * 10 + (digit - '0');
    }
    return value;
}

/// Seconds into the day of "hh:mm" or "hh:mm:ss", or -1.
int parseTime(std::string_view text)
{
    if ((text.size() != 5 && text.size() != 8) || text[2] != ':' || (text.size() == 8 && text[5] != ':'))
        return -1;
    const int hour = digitsAt(text, 0, 2);
    const int minute = digitsAt(text, 3, 2);
    const int second = text.size() == 8 ? digitsAt(text, 6, 2) : 0;
    if (hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59)
        return -1;
    return (hour * 60 + minute) * 60 + second;
}

char *putDigits(char *out, int value, int count)
{
    for (int position = count; position-- > 0; value /= 10)
        out[position] = char('0' + value % 10);
    return out + count;
}

} // namespace

void appendTimestamp(std::int64_t seconds, std::string &out)
{
    using namespace std::chrono;
    const auto day = floor<days>(sys_seconds(std::chrono::seconds(seconds)));
    const year_month_day date(day);
    const int time = int(seconds - day.time_since_epoch().count() * secondsPerDay);
    char text[] = "0000-00-00 00:00:00";
    putDigits(text, int(date.year()), 4);
    putDigits(text + 5, int(unsigned(date.month())), 2);
    putDigits(text + 8, int(unsigned(date.day())), 2);
    putDigits(text + 11, time / 3600, 2);
    putDigits(text + 14, time / 60 % 60, 2);
    putDigits(text + 17, time % 60, 2);
    out.append(text, sizeof text - 1);
}

std::optional<std::int64_t> parseTimestamp(std::string_view text)
{
    using namespace std::chrono;
    if (text.size() < 10 || text[4] != '-' || text[7] != '-')
        return std::nullopt;
    const int year = digitsAt(text, 0, 4);
    const int month = digitsAt(text, 5, 2);
    const int day = digitsAt(text, 8, 2);
    if (year < 0 || month < 1 || day < 1)
        return std::nullopt;
    const year_month_day date { std::chrono::year(year), std::chrono::month(unsigned(month)), std::chrono::day(unsigned(day)) };
    int time = 0;
    if (text.size() > 10)
        time = text[10] == ' ' ? parseTime(text.substr(11)) : -1;
    if (!date.ok() || time < 0)
        return std::nullopt;
    return std::int64_t(sys_days(date).time_since_epoch().count()) * secondsPerDay + time;
}

} // namespace packet
