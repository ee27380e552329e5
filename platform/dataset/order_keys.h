#pragma once

#include <cstdint>
#include <vector>

/// Numbers of rows or texts, counted from 0.
using Places = std::vector<std::uint32_t>;

/// Unsigned numbers that order like the things they stand for, and how many bits they need.
struct OrderKeys {
    std::vector<std::uint64_t> values;
    int bits = 64;

    /// Leaves out the bits that all keys have in common.
    void squeeze();
    /// Shifts the keys so that the smallest but 0 becomes 1.
    void startAtOne();
    void reverse();
    /// Lets `next` decide where these keys are equal.
    void refine(OrderKeys next);
    /// The places of the keys in ascending order, equals in theirs.
    Places sortedPlaces() const;

private:
    void useRanks();
};
