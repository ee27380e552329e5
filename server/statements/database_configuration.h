#pragma once

#include "engine/engine.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace server {

/// One database that clients may choose by its name.
struct DatabaseConfiguration {
    std::string name;
    std::string url;
    std::vector<std::string> tables {}; ///< empty: all of the database's own
    std::vector<engine::TableRule> rules {}; ///< for users to whom rules apply
    std::vector<std::string> replicas {}; ///< further addresses of the same rows
    std::chrono::milliseconds largestLag = std::chrono::seconds(10); ///< of an address, when there are several
    std::size_t workers = 8; ///< statements that run at a time
    std::size_t connections() const { return workers + 1; } ///< one more, to ask whether the database is there
    std::size_t queue = 200; ///< statements that wait, of all users
    std::size_t userStatements = 4; ///< of one user that run at a time
    std::size_t userQueue = 50; ///< of one user that wait
    std::chrono::milliseconds statementTime = std::chrono::minutes(10); ///< waiting and sending included
    std::size_t statementMemory = 256 << 20; ///< bytes that one may take while it runs
    std::int64_t rows = 2'000'000; ///< of one result
    std::uint64_t resultBytes = std::uint64_t(1) << 30; ///< of one result, before compression and encryption
    std::size_t sendBuffer = 4 << 20; ///< bytes of a result that wait to be sent
    /// How old a run may be that a statement which asks the same joins, and an answer from lookup tables alone; zero: nothing is shared.
    std::chrono::milliseconds sharedAge {};
    std::vector<std::string> lookupTables {};
    std::size_t keptBytes = 16 << 20; ///< of the answers from lookup tables
};

} // namespace server
