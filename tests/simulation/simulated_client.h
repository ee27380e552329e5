#pragma once

#include "server_client/server_session.h"
#include "tests/simulation/statement_plan.h"

#include <functional>
#include <vector>

namespace simulation {

/// How one statement went, as its client saw it.
struct Asked {
    StatementPlan plan {};
    std::string outcome {};
    std::string violation {}; ///< empty when all was as it must be
    std::string resultBeganAt {}; ///< as the log writes times; empty when nothing of it came
    bool hasSentSince = false; ///< something, before the end of the statement
    double seconds = 0;
};

/// A client with one statement after the other.
class SimulatedClient {
public:
    struct Surroundings {
        server_client::SessionOptions session;
        std::function<std::uint64_t()> acts; ///< how often it has sent anything
        std::function<void()> begins; ///< told before each statement
        std::function<int()> clockJumps; ///< how often the servers' clock has jumped
    };

    SimulatedClient(std::uint64_t seed, int number, Surroundings surroundings);
    std::vector<Asked> run(int statements);

private:
    Asked ask(server_client::ServerSession &session, const StatementPlan &plan);
    /// Empty when a statement of this kind may fail so.
    struct Circumstances {
        bool isCancelled = false;
        int clockJumps = 0; ///< meanwhile
    };
    static std::string judge(const StatementPlan &plan, const server_client::Error &error, const Circumstances &circumstances);

    const std::uint64_t m_seed;
    const int m_number;
    const Surroundings m_surroundings;
    int m_jumpsAtLogin = 0; ///< of the clock by which tokens end
};

} // namespace simulation
