#include "engine/calendar.h"
#include "engine/sqlite/date_mask.h"
#include "engine/sqlite/function_support.h"

#include "packet/packet.h"

#include <algorithm>
#include <cmath>

namespace engine::functions {

namespace {

constexpr std::int64_t secondsPerDay = 86400;
constexpr std::string_view storedMask = "yyyy-mm-dd hh24:mi:ss";

std::string storedText(std::int64_t seconds)
{
    std::string text;
    packet::appendTimestamp(seconds, text);
    return text;
}

/// Seconds of a stored date, or nothing when the value is none.
std::optional<std::int64_t> dateOf(sqlite3_value *value) { return isText(value) ? packet::parseTimestamp(viewOf(value)) : std::nullopt; }

void toDate(sqlite3_context *context, Arguments arguments)
{
    if (isNull(arguments[0]) || isNull(arguments.back()))
        return;
    const std::string mask = arguments.size() > 1 ? textOf(arguments[1]) : std::string(storedMask);
    setText(context, storedText(readDate(textOf(arguments[0]), mask)));
}

void toChar(sqlite3_context *context, Arguments arguments)
{
    if (isNull(arguments[0]) || isNull(arguments.back()))
        return;
    if (arguments.size() == 1)
        return setText(context, textOf(arguments[0]));
    const auto date = dateOf(arguments[0]);
    if (!date)
        throw OracleError("ORA-01481: 无效的数字格式模型，to_char 的格式只能用于日期");
    setText(context, formatDate(*date, textOf(arguments[1])));
}

/// The beginning of the day, or of what the mask element names.
std::int64_t truncatedDate(std::int64_t date, std::string_view unit)
{
    constexpr std::pair<std::string_view, std::string_view> units[] = {
        { "dd", "yyyy-mm-dd" },
        { "mm", "yyyy-mm" },
        { "month", "yyyy-mm" },
        { "yyyy", "yyyy" },
        { "year", "yyyy" },
        { "hh", "yyyy-mm-dd hh24" },
        { "hh24", "yyyy-mm-dd hh24" },
        { "mi", "yyyy-mm-dd hh24:mi" },
    };
    std::string lower(unit);
    std::transform(
        lower.begin(), lower.end(), lower.begin(), [](char letter) { return letter >= 'A' && letter <= 'Z' ? char(letter + 32) : letter; });
    for (const auto &[name, mask] : units) {
        if (lower == name) {
            const std::string kept = formatDate(date, mask);
            return readDate(kept + std::string("0000-01-01 00:00").substr(kept.size()), "yyyy-mm-dd hh24:mi");
        }
    }
    throw OracleError("ORA-01898: 精度说明符过多或无效");
}

void trunc(sqlite3_context *context, Arguments arguments)
{
    if (isNull(arguments[0]) || isNull(arguments.back()))
        return;
    if (const auto date = dateOf(arguments[0]))
        return setText(context, storedText(truncatedDate(*date, arguments.size() > 1 ? textOf(arguments[1]) : "dd")));
    const std::int64_t digits = arguments.size() > 1 ? std::clamp<std::int64_t>(integerOf(arguments[1]), -38, 38) : 0;
    setNumber(context, truncated(numberOf(arguments[0]), int(digits)));
}

std::string shifted(std::int64_t date, sqlite3_value *days, int direction)
{
    const double moved = numberOf(days).toDouble() * double(secondsPerDay) * direction;
    // Whatever is further away than all dates are from each other is out of the calendar too.
    constexpr double furthest = 4e11;
    return storedText(inCalendar(date + std::llround(std::clamp(moved, -furthest, furthest))));
}

void datePlus(sqlite3_context *context, Arguments arguments)
{
    if (isNull(arguments[0]) || isNull(arguments[1]))
        return;
    const auto left = dateOf(arguments[0]);
    const auto right = dateOf(arguments[1]);
    if (left && right)
        throw OracleError("ORA-00975: 不允许日期 + 日期");
    if (left)
        return setText(context, shifted(*left, arguments[1], 1));
    if (!right)
        throw OracleError("ORA-00932: 数据类型不一致，应为日期");
    setText(context, shifted(*right, arguments[0], 1));
}

void dateMinus(sqlite3_context *context, Arguments arguments)
{
    if (isNull(arguments[0]) || isNull(arguments[1]))
        return;
    const auto left = dateOf(arguments[0]);
    const auto right = dateOf(arguments[1]);
    if (!left)
        throw OracleError("ORA-00932: 数据类型不一致，应为日期");
    if (!right)
        return setText(context, shifted(*left, arguments[1], -1));
    const std::int64_t seconds = *left - *right;
    if (seconds % secondsPerDay == 0)
        sqlite3_result_int64(context, seconds / secondsPerDay);
    else
        sqlite3_result_double(context, double(seconds) / double(secondsPerDay));
}

} // namespace

void addDateFunctions(sqlite3 *database)
{
    add(database, "to_date", 1, toDate);
    add(database, "to_date", 2, toDate);
    add(database, "to_char", 1, toChar);
    add(database, "to_char", 2, toChar);
    add(database, "trunc", 1, trunc);
    add(database, "trunc", 2, trunc);
    add(database, "oracle_date_plus", 2, datePlus);
    add(database, "oracle_date_minus", 2, dateMinus);
}

} // namespace engine::functions
