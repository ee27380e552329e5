#pragma once

#include <cstdint>
#include <vector>

namespace platform {

/// An order of rows or texts: their numbers, counted from 0, each once.
using Permutation = std::vector<std::uint32_t>;

/// Unsigned numbers that order like the things they stand for, and how many bits they need.
struct OrderKeys {
    std::vector<std::uint64_t> values;
    int bits = 64;

    /// Drops the bits that all keys have in common.
    void dropCommonBits();
    /// Shifts the keys so that the smallest but 0 becomes 1.
    void startAtOne();
    void reverse();
    /// Lets `next` decide where these keys are equal.
    void refine(OrderKeys next);
    /// The permutation that sorts the keys in ascending order. Stable.
    Permutation sortPermutation() const;

private:
    void useRanks();
};

} // namespace platform
