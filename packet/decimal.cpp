#include "packet/decimal.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <stdexcept>

namespace packet {

namespace {

constexpr int largestScale = 38;

constexpr std::array<Int128, largestScale + 1> powersOfTen = [] {
    std::array<Int128, largestScale + 1> powers { 1 };
    for (std::size_t exponent = 1; exponent < powers.size(); ++exponent)
        powers[exponent] = powers[exponent - 1] * 10;
    return powers;
}();

Int128 powerOfTen(int exponent) { return powersOfTen[std::size_t(exponent)]; }

bool isBlank(char character) { return character == ' ' || (character >= '\t' && character <= '\r'); }
bool isDigit(char character) { return character >= '0' && character <= '9'; }

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

/// value * 10^exponent, or nothing beyond 38 digits.
std::optional<Int128> shifted(Int128 value, int exponent)
{
    Int128 result = 0;
    if (exponent > largestScale || multiplyOverflows(value, powerOfTen(exponent), result))
        return std::nullopt;
    return result;
}

/// The digits of a number as they are read: zeros count only once another digit follows them.
class Mantissa {
public:
    bool add(int digit, bool fraction)
    {
        m_fraction += fraction;
        ++m_zeros;
        if (digit == 0)
            return true;
        const auto moved = m_units == 0 ? Int128(0) : shifted(m_units, m_zeros);
        m_zeros = 0;
        if (!moved || *moved > powerOfTen(largestScale) - 10)
            return false;
        m_units = *moved + digit;
        return true;
    }
    std::optional<Decimal> scaledBy(int exponent, bool negative) const
    {
        const Int128 units = negative ? -m_units : m_units;
        const int power = exponent - m_fraction + m_zeros;
        if (units == 0)
            return Decimal {};
        if (power < 0)
            return power < -largestScale ? std::nullopt : std::optional(Decimal { units, -power });
        const auto whole = shifted(units, power);
        return whole ? std::optional(Decimal { *whole, 0 }) : std::nullopt;
    }

private:
    Int128 m_units = 0;
    int m_zeros = 0;
    int m_fraction = 0;
};

std::optional<int> parseExponent(std::string_view text)
{
    if (text.size() > 1 && text.front() == '+' && isDigit(text[1]))
        text.remove_prefix(1);
    int exponent = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), exponent);
    if (error != std::errc() || end != text.data() + text.size() || std::abs(exponent) > 1000)
        return std::nullopt;
    return exponent;
}

UInt128 sizeOf(Int128 units) { return units < 0 ? -UInt128(units) : UInt128(units); }

char *putDigits(std::uint64_t value, char *out) { return std::to_chars(out, out + 20, value).ptr; }

char *putDigits(UInt128 value, char *out)
{
    constexpr std::uint64_t half = 10'000'000'000'000'000'000u;
    if (value <= UINT64_MAX)
        return putDigits(std::uint64_t(value), out);
    out = putDigits(std::uint64_t(value / half), out);
    auto low = std::uint64_t(value % half);
    for (char *digit = out + 19; digit-- > out; low /= 10)
        *digit = char('0' + low % 10);
    return out + 19;
}

/// The digits with a point before the last `scale` of them.
char *putPlain(UInt128 units, int scale, char *out)
{
    char *end = putDigits(units, out);
    if (scale == 0)
        return end;
    if (const auto missing = scale + 1 - (end - out); missing > 0) {
        std::copy_backward(out, end, end + missing);
        std::fill_n(out, missing, '0');
        end += missing;
    }
    std::copy_backward(end - scale, end, end + 1);
    end[-scale] = '.';
    return end + 1;
}

/// The same with its sign.
std::string plainNotation(Int128 units, int scale)
{
    std::array<char, Decimal::longestText> buffer;
    char *begin = buffer.data();
    if (units < 0)
        *begin++ = '-';
    return std::string(buffer.data(), putPlain(sizeOf(units), scale, begin));
}

} // namespace

std::optional<Decimal> Decimal::parse(std::string_view text)
{
    text = trimmed(text);
    const bool negative = !text.empty() && text.front() == '-';
    if (!text.empty() && (text.front() == '-' || text.front() == '+'))
        text.remove_prefix(1);
    Mantissa mantissa;
    bool anyDigit = false;
    bool fraction = false;
    for (; !text.empty(); text.remove_prefix(1)) {
        const char character = text.front();
        if (character == '.' && !fraction) {
            fraction = true;
        } else if (isDigit(character)) {
            anyDigit = true;
            if (!mantissa.add(character - '0', fraction))
                return std::nullopt;
        } else {
            break;
        }
    }
    if (!anyDigit)
        return std::nullopt;
    if (text.empty())
        return mantissa.scaledBy(0, negative);
    if (text.front() != 'e' && text.front() != 'E')
        return std::nullopt;
    const auto exponent = parseExponent(text.substr(1));
    return exponent ? mantissa.scaledBy(*exponent, negative) : std::nullopt;
}

std::optional<Decimal> Decimal::fromDouble(double value)
{
    if (!std::isfinite(value))
        return std::nullopt;
    std::array<char, 32> buffer;
    const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::scientific);
    return parse(std::string_view(buffer.data(), std::size_t(end - buffer.data())));
}

std::string Decimal::toString() const
{
    std::array<char, longestText> buffer;
    return std::string(buffer.data(), put(buffer.data()));
}

char *Decimal::put(char *out) const
{
    UInt128 size = sizeOf(units);
    int digits = scale;
    for (; digits > 0 && size > UINT64_MAX && size % 10 == 0; --digits)
        size /= 10;
    // Most numbers fit the processor's own division.
    if (auto low = std::uint64_t(size); low == size) {
        for (; digits > 0 && low % 10 == 0; --digits)
            low /= 10;
        size = low;
    }
    if (units < 0)
        *out++ = '-';
    return putPlain(size, digits, out);
}

std::string Decimal::toFixed(int digits) const
{
    if (digits <= scale) {
        const Decimal rounded = rescaled(digits);
        return plainNotation(rounded.units, rounded.scale);
    }
    std::string text = plainNotation(units, scale);
    if (scale == 0)
        text += '.';
    return text.append(std::size_t(digits - scale), '0');
}

double Decimal::toDouble() const
{
    constexpr Int128 exactLimit = Int128(1) << 53;
    // Both sides are exact in this range, so the one division rounds correctly.
    if (scale <= 22 && units <= exactLimit && units >= -exactLimit)
        return double(std::int64_t(units)) / double(powerOfTen(scale));
    const std::string text = plainNotation(units, scale);
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

Decimal Decimal::rescaled(int newScale) const
{
    newScale = std::clamp(newScale, 0, largestScale);
    if (newScale >= scale) {
        const auto grown = shifted(units, newScale - scale);
        if (!grown)
            throw std::overflow_error("Decimal::rescaled: more than 38 digits");
        return { *grown, newScale };
    }
    const Int128 divisor = powerOfTen(scale - newScale);
    const Int128 rest = units % divisor;
    const Int128 half = divisor / 2;
    return { units / divisor + (rest >= half) - (rest <= -half), newScale };
}

Decimal operator+(Decimal left, Decimal right)
{
    if (left.scale < right.scale)
        std::swap(left, right);
    // Digits are given up only when the sum would not fit with them.
    for (int scale = left.scale; scale >= 0; --scale) {
        const auto grown = scale >= right.scale ? shifted(right.units, scale - right.scale) : right.rescaled(scale).units;
        Int128 sum = 0;
        if (grown && !addOverflows(left.rescaled(scale).units, *grown, sum))
            return { sum, scale };
    }
    throw std::overflow_error("Decimal: sum of more than 38 digits");
}

std::strong_ordering operator<=>(Decimal left, Decimal right)
{
    if (left.scale == right.scale)
        return left.units <=> right.units;
    const Int128 leftOne = powerOfTen(left.scale);
    const Int128 rightOne = powerOfTen(right.scale);
    if (const auto whole = left.units / leftOne <=> right.units / rightOne; whole != 0)
        return whole;
    // Each rest is below one, so at the larger scale it has at most 38 digits.
    const int scale = std::max(left.scale, right.scale);
    return left.units % leftOne * powerOfTen(scale - left.scale) <=> right.units % rightOne * powerOfTen(scale - right.scale);
}

} // namespace packet
