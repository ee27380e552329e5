#pragma once

#include "tests/server/test_server.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace simulation {

/// What all runs share: a certificate, users whose passwords are cheap to compare, and a folder for the logs.
class World {
public:
    World();

    const server::Configuration &configuration() const { return m_configuration; }
    const std::string &certificate() const { return m_certificate; }
    /// A file in the folder.
    std::filesystem::path file(const std::string &name) const { return m_folder / name; }

private:
    server::test::TemporaryFolder m_folder {};
    server::Configuration m_configuration {};
    std::string m_certificate {};
};

struct Size {
    int clients = 10;
    int statements = 20; ///< of each client
};

/// What came of a run.
struct Findings {
    std::vector<std::string> violations {}; ///< of what must always hold; empty as long as it does
    std::map<std::string, int> outcomes {}; ///< how many statements ended so
    std::vector<std::string> trace {}; ///< a line for each statement, by client and number
    int connections = 0;
    int repeated = 0; ///< statements that arrived twice
    int restarts = 0;
    double longestSeconds = 0; ///< of one statement
};

/// One run: clients ask servers over a network that fails, servers end and come back, their clock jumps, all as the seed says. Every
/// result must be whole or refused with a message, no statement be sent more than twice or after a part of its result has come, nothing
/// hang, and servers end clean. Threads and the system's clock take part, so that a seed repeats its faults, not each microsecond.
Findings simulate(const World &world, std::uint64_t seed, const Size &size);

} // namespace simulation
