#include "packet/decimal.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>
#include <tuple>

namespace {

using packet::Decimal;
using packet::Int128;

std::string parsed(std::string_view text)
{
    const auto value = Decimal::parse(text);
    return value ? value->toString() : "none";
}

TEST(Decimal, ReadsWhatPeopleAndProgramsWrite)
{
    const std::pair<const char *, const char *> cases[] = {
        { "-12.50", "-12.5" },
        { " 7 ", "7" },
        { ".5", "0.5" },
        { "5.", "5" },
        { "+3", "3" },
        { "1e3", "1000" },
        { "1.25E-2", "0.0125" },
        { "-0.00", "0" },
        { "1200", "1200" },
        { "0.000000000000000000000000000000000000010", "0.00000000000000000000000000000000000001" },
        { "99999999999999999999999999999999999999", "99999999999999999999999999999999999999" },
        { "1.00000000000000000000000000000000000000000000000000", "1" },
        { "100000000000000000000000000000000000000000", "none" },
        { "1e-39", "none" },
        { "1e999999999999", "none" },
        { "", "none" },
        { ".", "none" },
        { "-", "none" },
        { "1e", "none" },
        { "1e+-3", "none" },
        { "1 2", "none" },
        { "0x10", "none" },
        { "12元", "none" },
    };
    for (const auto &[text, expected] : cases)
        EXPECT_EQ(parsed(text), expected) << text;
}

TEST(Decimal, TheTextHoldsEveryDigitAtEveryWidth)
{
    const Int128 nines = Int128(10'000'000'000'000'000'000u) * 10'000'000'000'000'000'000u - 1;
    const std::tuple<Int128, int, const char *> cases[] = {
        { INT64_MIN, 0, "-9223372036854775808" },
        { INT64_MIN, 19, "-0.9223372036854775808" },
        { Int128(UINT64_MAX) + 1, 0, "18446744073709551616" },
        { Int128(UINT64_MAX) + 1, 38, "0.00000000000000000018446744073709551616" },
        { nines, 38, "0.99999999999999999999999999999999999999" },
        { -nines, 1, "-9999999999999999999999999999999999999.9" },
        { Int128(10'000'000'000'000'000'000u) * 10, 0, "100000000000000000000" },
        { Int128(10'000'000'000'000'000'000u) * 10, 20, "1" },
        { Int128(10'000'000'000'000'000'000u) * 10'000'007, 3, "100000070000000000000000" },
        { 0, 5, "0" },
    };
    for (const auto &[units, scale, expected] : cases)
        EXPECT_EQ((Decimal { units, scale }.toString()), expected);
}

TEST(Decimal, ADoubleIsTheShortestNumberThatReadsBackAsIt)
{
    const std::pair<double, const char *> cases[] = {
        { 0.1, "0.1" },
        { 12345678901234.56, "12345678901234.56" },
        { 1e22, "10000000000000000000000" },
        { -2.5e-7, "-0.00000025" },
        { 0.1 + 0.2, "0.30000000000000004" },
    };
    for (const auto &[value, expected] : cases) {
        EXPECT_EQ(Decimal::fromDouble(value)->toString(), expected);
        EXPECT_EQ(Decimal::fromDouble(value)->toDouble(), value);
    }
    EXPECT_FALSE(Decimal::fromDouble(std::numeric_limits<double>::infinity()));
    EXPECT_FALSE(Decimal::fromDouble(std::nan("")));
}

TEST(Decimal, RoundsHalfAwayFromZero)
{
    EXPECT_EQ((Decimal { 125, 2 }).toFixed(1), "1.3");
    EXPECT_EQ((Decimal { -125, 2 }).toFixed(1), "-1.3");
    EXPECT_EQ((Decimal { 124, 2 }).toFixed(1), "1.2");
    EXPECT_EQ((Decimal { -4, 2 }).toFixed(1), "0.0");
    EXPECT_EQ((Decimal { 5, 1 }).toFixed(0), "1");
    EXPECT_EQ((Decimal { 12, 0 }).toFixed(2), "12.00");
    EXPECT_EQ((Decimal { -5, 2 }).toFixed(4), "-0.0500");
    EXPECT_THROW((Decimal { 12, 0 }).rescaled(38), std::overflow_error);
}

TEST(Decimal, AddsAndComparesAcrossScales)
{
    EXPECT_EQ((Decimal { 150, 2 }), (Decimal { 15, 1 }));
    EXPECT_LT((Decimal { -151, 2 }), (Decimal { -15, 1 }));
    EXPECT_GT((Decimal { 1, 38 }), Decimal {});
    EXPECT_LT((Decimal { 1, 38 }), *Decimal::parse("99999999999999999999999999999999999999"));
    EXPECT_EQ((Decimal { 1, 1 } + Decimal { 25, 2 }).toString(), "0.35");
    // 38 digits before the point leave no room for those after it.
    EXPECT_EQ((*Decimal::parse("99999999999999999999999999999999999998") + Decimal { 6, 1 }).toString(),
        "99999999999999999999999999999999999999");
}

} // namespace
