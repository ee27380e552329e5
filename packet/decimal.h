#pragma once

#include "packet/int128.h"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace packet {

/// An exact decimal number: units * 10^-scale. Scales run from 0 to 38; 1.50 (150, 2) equals 1.5 (15, 1).
struct Decimal {
    Int128 units = 0;
    int scale = 0;

    /// Reads "-12.50", ".5", "1e3"; blanks around it are allowed. Nothing when the text is no number or does not fit.
    static std::optional<Decimal> parse(std::string_view text);
    /// The shortest decimal that reads back as `value` (at most 17 significant digits). Nothing for infinities and NaN.
    static std::optional<Decimal> fromDouble(double value);

    /// Plain notation without trailing zeros after the point: "12.5", "-0.05", "1200".
    std::string toString() const;
    /// Writes toString() at `out`, where there is room for `longestText` bytes, and returns its end.
    char *put(char *out) const;
    static constexpr std::size_t longestText = 48;
    /// Plain notation with exactly `digits` digits after the point, rounded half away from zero.
    std::string toFixed(int digits) const;
    double toDouble() const;
    /// The same number at another scale; rounds half away from zero when digits are lost.
    Decimal rescaled(int newScale) const;

    friend Decimal operator+(Decimal left, Decimal right);
    friend std::strong_ordering operator<=>(Decimal left, Decimal right);
    friend bool operator==(Decimal left, Decimal right) { return (left <=> right) == 0; }
};

} // namespace packet
