#pragma once

#include <compare>
#include <concepts>
#include <cstdint>

namespace packet::wide {

/// What a 128-bit integer of the language does, for machines whose compiler has none. Overflow wraps around; shifts are of less than 128
/// bits. The halves lie as the language's own do on machines that keep the low byte first.
class Unsigned {
public:
    constexpr Unsigned() = default;
    template <std::integral Number>
    constexpr Unsigned(Number number)
        : m_low(std::uint64_t(number))
        , m_high(number < Number(0) ? ~std::uint64_t(0) : 0)
    {
    }
    constexpr Unsigned(std::uint64_t high, std::uint64_t low)
        : m_low(low)
        , m_high(high)
    {
    }

    constexpr std::uint64_t low() const { return m_low; }
    constexpr std::uint64_t high() const { return m_high; }
    template <class Number>
    requires std::integral<Number> || std::floating_point<Number>
    constexpr explicit operator Number() const
    {
        if constexpr (std::floating_point<Number>)
            return Number(m_high) * Number(0x1p64) + Number(m_low);
        else
            return Number(m_low);
    }

    friend constexpr bool operator==(Unsigned, Unsigned) = default;
    friend constexpr std::strong_ordering operator<=>(Unsigned left, Unsigned right)
    {
        return left.m_high == right.m_high ? left.m_low <=> right.m_low : left.m_high <=> right.m_high;
    }

    constexpr Unsigned operator~() const { return { ~m_high, ~m_low }; }
    constexpr Unsigned operator-() const { return ~*this + 1; }
    friend constexpr Unsigned operator+(Unsigned left, Unsigned right)
    {
        const std::uint64_t low = left.m_low + right.m_low;
        return { left.m_high + right.m_high + (low < left.m_low), low };
    }
    friend constexpr Unsigned operator-(Unsigned left, Unsigned right) { return left + -right; }
    friend constexpr Unsigned operator*(Unsigned left, Unsigned right)
    {
        const Unsigned low = product(left.m_low, right.m_low);
        return { low.m_high + left.m_high * right.m_low + left.m_low * right.m_high, low.m_low };
    }
    friend constexpr Unsigned operator/(Unsigned left, Unsigned right);
    friend constexpr Unsigned operator%(Unsigned left, Unsigned right);
    constexpr Unsigned &operator/=(Unsigned right) { return *this = *this / right; }
    friend constexpr Unsigned operator<<(Unsigned left, int bits)
    {
        if (bits >= 64)
            return { left.m_low << (bits - 64), 0 };
        return bits == 0 ? left : Unsigned(left.m_high << bits | left.m_low >> (64 - bits), left.m_low << bits);
    }

private:
    struct Division;
    static constexpr Unsigned product(std::uint64_t left, std::uint64_t right)
    {
        constexpr std::uint64_t half = 0xffff'ffff;
        const std::uint64_t lowest = (left & half) * (right & half);
        const std::uint64_t first = (left >> 32) * (right & half) + (lowest >> 32);
        const std::uint64_t second = (left & half) * (right >> 32) + (first & half);
        return { (left >> 32) * (right >> 32) + (first >> 32) + (second >> 32), second << 32 | (lowest & half) };
    }
    static constexpr Division divided(Unsigned left, Unsigned right);

    std::uint64_t m_low = 0;
    std::uint64_t m_high = 0;
};

struct Unsigned::Division {
    Unsigned quotient;
    Unsigned rest;
};

/// Bit by bit where the processor's own division is too narrow.
constexpr Unsigned::Division Unsigned::divided(Unsigned left, Unsigned right)
{
    if (left.m_high == 0 && right.m_high == 0)
        return { left.m_low / right.m_low, left.m_low % right.m_low };
    Division result {};
    for (int bit = 127; bit >= 0; --bit) {
        const std::uint64_t next = (bit >= 64 ? left.m_high >> (bit - 64) : left.m_low >> bit) & 1;
        const bool carries = result.rest.m_high >> 63;
        result.rest = (result.rest << 1) + next;
        if (carries || result.rest >= right) {
            result.rest = result.rest - right;
            result.quotient = result.quotient + (Unsigned(1) << bit);
        }
    }
    return result;
}

constexpr Unsigned operator/(Unsigned left, Unsigned right) { return Unsigned::divided(left, right).quotient; }
constexpr Unsigned operator%(Unsigned left, Unsigned right) { return Unsigned::divided(left, right).rest; }

/// The same with a sign: two's complement.
class Signed {
public:
    constexpr Signed() = default;
    template <std::integral Number>
    constexpr Signed(Number number)
        : m_bits(number)
    {
    }
    constexpr explicit Signed(Unsigned bits)
        : m_bits(bits)
    {
    }

    constexpr explicit operator Unsigned() const { return m_bits; }
    template <class Number>
    requires std::integral<Number> || std::floating_point<Number>
    constexpr explicit operator Number() const
    {
        if constexpr (std::floating_point<Number>)
            return isNegative() ? -Number(-m_bits) : Number(m_bits);
        else
            return Number(m_bits);
    }

    friend constexpr bool operator==(Signed, Signed) = default;
    friend constexpr std::strong_ordering operator<=>(Signed left, Signed right)
    {
        return left.isNegative() == right.isNegative() ? left.m_bits <=> right.m_bits : right.isNegative() <=> left.isNegative();
    }

    constexpr Signed operator-() const { return Signed(-m_bits); }
    friend constexpr Signed operator+(Signed left, Signed right) { return Signed(left.m_bits + right.m_bits); }
    friend constexpr Signed operator-(Signed left, Signed right) { return Signed(left.m_bits - right.m_bits); }
    friend constexpr Signed operator*(Signed left, Signed right) { return Signed(left.m_bits * right.m_bits); }
    friend constexpr Signed operator/(Signed left, Signed right)
    {
        const Unsigned quotient = left.size() / right.size();
        return Signed(left.isNegative() == right.isNegative() ? quotient : -quotient);
    }
    friend constexpr Signed operator%(Signed left, Signed right) { return left - left / right * right; }
    constexpr Signed &operator+=(Signed right) { return *this = *this + right; }
    constexpr Signed &operator-=(Signed right) { return *this = *this - right; }
    constexpr Signed &operator*=(Signed right) { return *this = *this * right; }
    constexpr Signed &operator/=(Signed right) { return *this = *this / right; }
    constexpr Signed &operator%=(Signed right) { return *this = *this % right; }
    friend constexpr Signed operator<<(Signed left, int bits) { return Signed(left.m_bits << bits); }
    friend constexpr Signed operator>>(Signed left, int bits)
    {
        const Signed one = Signed(1) << bits;
        const Signed whole = left / one;
        return left.isNegative() && whole * one != left ? whole - 1 : whole;
    }

    friend constexpr bool addOverflows(Signed left, Signed right, Signed &sum)
    {
        sum = left + right;
        return right.isNegative() ? sum > left : sum < left;
    }
    friend constexpr bool multiplyOverflows(Signed left, Signed right, Signed &product)
    {
        product = left * right;
        if (left == 0 || right == 0)
            return false;
        // The smallest number is its own negative.
        return product.isNegative() != (left.isNegative() != right.isNegative()) || product.size() / left.size() != right.size();
    }

private:
    constexpr bool isNegative() const { return m_bits.high() >> 63; }
    constexpr Unsigned size() const { return isNegative() ? -m_bits : m_bits; }

    Unsigned m_bits;
};

} // namespace packet::wide
