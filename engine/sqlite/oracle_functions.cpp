#include "engine/sqlite/oracle_functions.h"

#include "engine/sqlite/function_support.h"

#include "engine/sqlite/statement_budget.h"
#include "packet/utf8.h"

#include <charconv>
#include <cmath>

namespace engine {

namespace functions {

namespace {

constexpr std::size_t workOfCall = 32;

void call(sqlite3_context *context, int count, sqlite3_value **values)
{
    const auto body = reinterpret_cast<Body>(sqlite3_user_data(context));
    guarded(context, [&] {
        StatementBudget::work(workOfCall);
        body(context, Arguments(values, std::size_t(count)));
    });
}

void appendUtf8(std::string &out, char32_t code)
{
    if (code < 0x80) {
        out += char(code);
    } else if (code < 0x800) {
        out += char(0xC0 | code >> 6);
        out += char(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        out += char(0xE0 | code >> 12);
        out += char(0x80 | (code >> 6 & 0x3F));
        out += char(0x80 | (code & 0x3F));
    } else {
        out += char(0xF0 | code >> 18);
        out += char(0x80 | (code >> 12 & 0x3F));
        out += char(0x80 | (code >> 6 & 0x3F));
        out += char(0x80 | (code & 0x3F));
    }
}

} // namespace

void add(sqlite3 *database, const char *name, int arguments, Body body)
{
    sqlite3_create_function_v2(database, name, arguments, SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS,
        reinterpret_cast<void *>(body), call, nullptr, nullptr, nullptr);
}

std::string_view viewOf(sqlite3_value *value)
{
    const auto *text = reinterpret_cast<const char *>(sqlite3_value_text(value));
    return { text ? text : "", std::size_t(sqlite3_value_bytes(value)) };
}

std::string textOf(sqlite3_value *value)
{
    if (sqlite3_value_type(value) != SQLITE_FLOAT)
        return std::string(viewOf(value));
    std::string text = computedNumber(sqlite3_value_double(value)).toString();
    const std::size_t digit = text.front() == '-' ? 1 : 0;
    if (text.size() > digit + 1 && text[digit] == '0')
        text.erase(digit, 1);
    return text;
}

std::u32string charactersOf(sqlite3_value *value)
{
    const std::string text = textOf(value);
    std::u32string characters;
    characters.reserve(text.size());
    // Stored bytes that are no UTF-8 stand for themselves.
    for (std::size_t position = 0; position < text.size();) {
        const std::string_view character = packet::characterAt(text, position);
        characters += packet::codePointOf(character);
        position += character.size();
    }
    StatementBudget::work(text.size());
    return characters;
}

packet::Decimal computedNumber(double value)
{
    constexpr double unit = 10000;
    const double moved = value * unit;
    const double whole = std::nearbyint(moved);
    if (std::fabs(moved) < 1e15 && std::fabs(moved - whole) < 1e-4)
        return packet::Decimal { std::int64_t(whole), 4 };
    char digits[32];
    const auto [end, error] = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::scientific, 14);
    const auto decimal = packet::Decimal::parse(std::string_view(digits, std::size_t(end - digits)));
    if (!decimal)
        throw OracleError("ORA-01426: 数字溢出");
    return *decimal;
}

packet::Decimal numberOf(sqlite3_value *value)
{
    std::optional<packet::Decimal> number;
    switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER:
        return { sqlite3_value_int64(value), 0 };
    case SQLITE_FLOAT:
        number = packet::Decimal::fromDouble(sqlite3_value_double(value));
        break;
    default:
        number = packet::Decimal::parse(viewOf(value));
    }
    if (!number)
        throw OracleError(isText(value) ? "ORA-01722: 无效数字“" + std::string(viewOf(value).substr(0, 60)) + "”" : "ORA-01426: 数字溢出");
    return *number;
}

std::int64_t integerOf(sqlite3_value *value)
{
    if (sqlite3_value_type(value) == SQLITE_INTEGER)
        return sqlite3_value_int64(value);
    const packet::Decimal whole = numberOf(value);
    packet::Int128 units = whole.units;
    for (int digit = 0; digit < whole.scale; ++digit)
        units /= 10;
    if (units != packet::Int128(std::int64_t(units)))
        throw OracleError("ORA-01426: 数字溢出");
    return std::int64_t(units);
}

void checkMadeText(std::size_t bytes)
{
    if (bytes > longestMadeText)
        throw OracleError("ORA-01489: 字符串连接的结果过长，最多 4000 字节");
}

void setText(sqlite3_context *context, std::string_view text)
{
    if (text.empty())
        sqlite3_result_null(context);
    else
        sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

void setCharacters(sqlite3_context *context, std::u32string_view characters)
{
    std::string text;
    for (const char32_t character : characters)
        appendUtf8(text, character);
    setText(context, text);
}

void setNumber(sqlite3_context *context, const packet::Decimal &number)
{
    const packet::Decimal whole = number.rescaled(0);
    if (whole == number && whole.units == packet::Int128(std::int64_t(whole.units)))
        sqlite3_result_int64(context, std::int64_t(whole.units));
    else
        sqlite3_result_double(context, number.toDouble());
}

} // namespace functions

void registerOracleFunctions(sqlite3 *database)
{
    functions::addTextFunctions(database);
    functions::addLikeFunction(database);
    functions::addNumberFunctions(database);
    functions::addDateFunctions(database);
    functions::addRegexpFunctions(database);
    functions::addAggregates(database);
}

} // namespace engine
