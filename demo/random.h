#pragma once

#include <cstddef>
#include <cstdint>

namespace demo {

/// Random numbers that are the same on every system, unlike the standard distributions: splitmix64 (Steele, Lea and Flood,
/// "Fast splittable pseudorandom number generators", 2014). Take one number a statement, or in a braced list: the order of
/// operands is the compiler's choice.
class Random {
public:
    explicit Random(std::uint64_t seed)
        : m_state(seed)
    {
    }
    /// An own sequence for the `index`-th thing of `seed`, so that one thing never depends on another.
    Random(std::uint64_t seed, std::uint64_t index)
        : m_state(mix(seed) ^ mix(~index))
    {
    }

    std::uint64_t next() { return mix(m_state += increment); }
    /// A number from 0 to bound - 1; bound is positive.
    std::int64_t below(std::int64_t bound) { return static_cast<std::int64_t>((next() >> 33) * static_cast<std::uint64_t>(bound) >> 31); }
    std::int64_t between(std::int64_t low, std::int64_t high) { return low + below(high - low + 1); }
    bool perMille(int share) { return below(1000) < share; }
    template <typename Range>
    const auto &pick(const Range &range)
    {
        return range[static_cast<std::size_t>(below(static_cast<std::int64_t>(range.size())))];
    }

private:
    static constexpr std::uint64_t increment = 0x9e3779b97f4a7c15;

    static std::uint64_t mix(std::uint64_t value)
    {
        value = (value ^ (value >> 30)) * 0xbf58476d1ce4e5b9;
        value = (value ^ (value >> 27)) * 0x94d049bb133111eb;
        return value ^ (value >> 31);
    }

    std::uint64_t m_state;
};

} // namespace demo
