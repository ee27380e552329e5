#include "packet/wide_integer.h"

#include <gtest/gtest.h>

#ifdef __SIZEOF_INT128__

#include <bit>
#include <random>

namespace packet::wide {

namespace {

__extension__ typedef __int128 Native;
__extension__ typedef unsigned __int128 NativeBits;

constexpr auto smallest = Native(NativeBits(1) << 127);

/// Numbers of every size, and those at the edges often.
class Numbers {
public:
    Native next()
    {
        constexpr Native edges[] = { 0, 1, -1, smallest, ~smallest, Native(1) << 64, (Native(1) << 63) - 1, -(Native(1) << 63) };
        if (m_random() % 5 == 0)
            return edges[m_random() % std::size(edges)];
        const auto bits = NativeBits(m_random()) << 64 | m_random();
        return Native(bits) >> (m_random() % 127);
    }
    int shift() { return int(m_random() % 127); }

private:
    std::mt19937_64 m_random { 7 };
};

Native nativeOf(Signed number) { return std::bit_cast<Native>(number); }

} // namespace

TEST(WideInteger, ComputesAsTheLanguageDoes)
{
    Numbers numbers;
    for (int round = 0; round < 50'000; ++round) {
        const Native a = numbers.next();
        const Native b = numbers.next();
        const auto left = std::bit_cast<Signed>(a);
        const auto right = std::bit_cast<Signed>(b);
        SCOPED_TRACE(round);
        ASSERT_TRUE(nativeOf(left - right) == Native(NativeBits(a) - NativeBits(b)));
        ASSERT_TRUE((left <=> right) == (a <=> b) && (left == right) == (a == b));
        const int bits = numbers.shift();
        ASSERT_TRUE(nativeOf(left >> bits) == a >> bits);
        ASSERT_TRUE(double(left) == double(a) || std::abs(double(left) / double(a) - 1) < 1e-15);
        if (b != 0 && !(a == smallest && b == -1)) {
            ASSERT_TRUE(nativeOf(left / right) == a / b);
            ASSERT_TRUE(nativeOf(left % right) == a % b);
        }
        Native expected = 0;
        Signed result;
        ASSERT_EQ(addOverflows(left, right, result), __builtin_add_overflow(a, b, &expected));
        ASSERT_TRUE(nativeOf(result) == expected);
        ASSERT_EQ(multiplyOverflows(left, right, result), __builtin_mul_overflow(a, b, &expected));
        ASSERT_TRUE(nativeOf(result) == expected);
    }
}

} // namespace packet::wide

#endif
