#include "platform/dataset/order_keys.h"

#include <algorithm>
#include <array>
#include <bit>
#include <numeric>

namespace platform {

namespace {

constexpr int digitBits = 8;

/// A stable radix sort by the bits from `low` to `high`.
void sortWords(std::vector<std::uint64_t> &words, int low, int high)
{
    std::vector<std::uint64_t> sorted(words.size());
    for (int shift = low; shift < high; shift += digitBits) {
        const std::uint64_t mask = (std::uint64_t(1) << std::min(digitBits, high - shift)) - 1;
        std::array<std::uint32_t, 1 << digitBits> starts {};
        for (const std::uint64_t word : words)
            ++starts[word >> shift & mask];
        std::exclusive_scan(starts.begin(), starts.end(), starts.begin(), 0U);
        for (const std::uint64_t word : words)
            sorted[starts[word >> shift & mask]++] = word;
        words.swap(sorted);
    }
}

} // namespace

/// Each row number rides with as many bits of its key as one word holds.
Permutation OrderKeys::sortPermutation() const
{
    Permutation permutation(values.size());
    std::iota(permutation.begin(), permutation.end(), 0U);
    if (std::ranges::is_sorted(values))
        return permutation;
    const int rowBits = std::bit_width(permutation.size());
    const int room = 64 - rowBits;
    std::vector<std::uint64_t> words(permutation.size());
    for (int shift = 0; shift < bits; shift += room) {
        for (std::size_t at = 0; at < words.size(); ++at)
            words[at] = values[permutation[at]] >> shift << rowBits | permutation[at];
        sortWords(words, rowBits, rowBits + std::min(room, bits - shift));
        for (std::size_t at = 0; at < words.size(); ++at)
            permutation[at] = std::uint32_t(words[at] & ((std::uint64_t(1) << rowBits) - 1));
    }
    return permutation;
}

void OrderKeys::dropCommonBits()
{
    std::uint64_t differing = 0;
    for (const std::uint64_t value : values)
        differing |= value ^ values.front();
    bits = std::popcount(differing);
    struct Run {
        int shift;
        std::uint64_t mask;
    };
    std::vector<Run> runs; ///< what a run of differing bits loses below it, and where it lies then
    for (int bit = 0, target = 0; bit < 64;) {
        const int length = std::countr_one(differing >> bit);
        if (length > 0)
            runs.push_back({ bit - target, (length == 64 ? ~std::uint64_t(0) : (std::uint64_t(1) << length) - 1) << target });
        target += length;
        bit += std::max(length, 1);
    }
    for (std::uint64_t &value : values) {
        std::uint64_t squeezed = 0;
        for (const Run &run : runs)
            squeezed |= value >> run.shift & run.mask;
        value = squeezed;
    }
}

void OrderKeys::startAtOne()
{
    std::uint64_t smallest = ~std::uint64_t(0);
    std::uint64_t largest = 0;
    for (const std::uint64_t value : values) {
        smallest = std::min(smallest, value - 1);
        largest = std::max(largest, value);
    }
    for (std::uint64_t &value : values)
        value -= value == 0 ? 0 : smallest;
    bits = largest == 0 ? 0 : std::bit_width(largest - smallest);
}

void OrderKeys::reverse()
{
    const std::uint64_t mask = bits == 0 ? 0 : ~std::uint64_t(0) >> (64 - bits);
    for (std::uint64_t &value : values)
        value ^= mask;
}

/// Replaces the keys by dense ranks, which need no more bits than the number of keys.
void OrderKeys::useRanks()
{
    const Permutation permutation = sortPermutation();
    std::vector<std::uint64_t> ranks(permutation.size());
    std::uint64_t rank = 0;
    for (std::size_t at = 0; at < permutation.size(); ++at) {
        rank += at > 0 && values[permutation[at]] != values[permutation[at - 1]];
        ranks[permutation[at]] = rank;
    }
    *this = { std::move(ranks), int(std::bit_width(rank)) };
}

void OrderKeys::refine(OrderKeys next)
{
    for (OrderKeys *side : { this, &next }) {
        if (bits + next.bits > 64 && side->bits > 32)
            side->useRanks();
    }
    for (std::size_t at = 0; at < values.size(); ++at)
        values[at] = values[at] << next.bits | next.values[at];
    bits += next.bits;
}

} // namespace platform
