#pragma once

#include "packet/packet.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <random>
#include <string>

namespace simulation {

using Random = std::mt19937_64;

/// A generator of its own for each part of a run, so that what one part draws changes nothing for the others.
Random randomFor(std::uint64_t seed, std::uint64_t first, std::uint64_t second = 0, std::uint64_t third = 0);
/// From `least` to `most`.
std::uint64_t pick(Random &random, std::uint64_t least, std::uint64_t most);
bool happens(Random &random, double probability);

/// A statement over the numbers of the test database, and what may come of it.
struct StatementPlan {
    enum class Nature {
        Rows,
        Forbidden, ///< the gate refuses it
        Failing, ///< in its last rows
        Endless,
        TooLarge, ///< for the client
    };

    Nature nature = Nature::Rows;
    std::string tag {}; ///< stands in its text and in each of its rows, as of no other one of the run
    std::uint64_t first = 0; ///< rows: each number up to this
    std::uint64_t second = 0; ///< with each up to this
    std::optional<std::chrono::milliseconds> cancelAfter {};

    std::string sql() const;
    /// Why these rows are not exactly those of the statement; empty when they are.
    std::string faultOf(const packet::Packet &rows) const;
};

/// More rows than this are too large for the client.
constexpr std::size_t mostRows = 5'000;

StatementPlan planStatement(std::uint64_t seed, int client, int number);

} // namespace simulation
