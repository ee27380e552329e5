#include "engine/sqlite/function_support.h"

#include <algorithm>

namespace engine::functions {

namespace {

using packet::Decimal;

constexpr int mostDigits = 38;

Decimal power(int exponent)
{
    Decimal result { 1, 0 };
    for (int digit = 0; digit < exponent; ++digit)
        result.units *= 10;
    return result;
}

/// Cuts what lies below 10^-digits; digits may be negative.
Decimal cut(Decimal number, int digits)
{
    if (digits >= number.scale)
        return number;
    if (number.scale - digits > mostDigits)
        return {};
    const packet::Int128 unit = power(number.scale - digits).units;
    return { number.units - number.units % unit, number.scale };
}

Decimal rounded(Decimal number, int digits)
{
    if (digits >= number.scale)
        return number;
    if (digits >= 0)
        return number.rescaled(digits);
    if (number.scale - digits > mostDigits)
        return {};
    const packet::Int128 unit = power(number.scale - digits).units;
    const Decimal below = cut(number, digits);
    const packet::Int128 rest = number.units - below.units;
    const int carry = (rest >= unit / 2) - (rest <= -unit / 2);
    return { below.units + carry * unit, number.scale };
}

int digitsOf(Arguments arguments)
{
    return arguments.size() > 1 ? int(std::clamp<std::int64_t>(integerOf(arguments[1]), -mostDigits, mostDigits)) : 0;
}

void round(sqlite3_context *context, Arguments arguments)
{
    if (!isNull(arguments[0]) && !isNull(arguments.back()))
        setNumber(context, rounded(numberOf(arguments[0]), digitsOf(arguments)));
}

void abs(sqlite3_context *context, Arguments arguments)
{
    if (isNull(arguments[0]))
        return;
    const Decimal number = numberOf(arguments[0]);
    setNumber(context, { number.units < 0 ? -number.units : number.units, number.scale });
}

void sign(sqlite3_context *context, Arguments arguments)
{
    if (isNull(arguments[0]))
        return;
    const auto units = numberOf(arguments[0]).units;
    sqlite3_result_int(context, (units > 0) - (units < 0));
}

/// The next whole number in the given direction.
void wholeTowards(sqlite3_context *context, Arguments arguments, int direction)
{
    if (isNull(arguments[0]))
        return;
    const Decimal number = numberOf(arguments[0]);
    Decimal whole = cut(number, 0).rescaled(0);
    if (direction > 0 ? whole < number : whole > number)
        whole.units += direction;
    setNumber(context, whole);
}

void ceil(sqlite3_context *context, Arguments arguments) { wholeTowards(context, arguments, 1); }
void floor(sqlite3_context *context, Arguments arguments) { wholeTowards(context, arguments, -1); }

/// The rest has the sign of the dividend; by zero the dividend itself is left.
void mod(sqlite3_context *context, Arguments arguments)
{
    if (isNull(arguments[0]) || isNull(arguments[1]))
        return;
    const Decimal dividend = numberOf(arguments[0]);
    const Decimal divisor = numberOf(arguments[1]);
    if (divisor.units == 0)
        return setNumber(context, dividend);
    const int scale = std::max(dividend.scale, divisor.scale);
    setNumber(context, { dividend.rescaled(scale).units % divisor.rescaled(scale).units, scale });
}

void divisor(sqlite3_context *context, Arguments arguments)
{
    if (!isNull(arguments[0]) && numberOf(arguments[0]).units == 0)
        throw OracleError("ORA-01476: 除数为 0");
    sqlite3_result_value(context, arguments[0]);
}

void toNumber(sqlite3_context *context, Arguments arguments)
{
    if (!isNull(arguments[0]))
        setNumber(context, numberOf(arguments[0]));
}

} // namespace

Decimal truncated(const Decimal &number, int digits) { return cut(number, digits); }

void addNumberFunctions(sqlite3 *database)
{
    add(database, "round", 1, round);
    add(database, "round", 2, round);
    add(database, "abs", 1, abs);
    add(database, "sign", 1, sign);
    add(database, "ceil", 1, ceil);
    add(database, "floor", 1, floor);
    add(database, "mod", 2, mod);
    add(database, "to_number", 1, toNumber);
    add(database, "oracle_divisor", 1, divisor);
}

} // namespace engine::functions
