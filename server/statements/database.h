#pragma once

#include "engine/engine.h"
#include "server/base/fair_pool.h"
#include "server/statements/database_configuration.h"
#include "server/statements/replica.h"
#include "server/statements/shared_results.h"

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace server {

/// A configured database: its addresses, and the workers that run its statements. To be used from any thread.
class Database {
public:
    explicit Database(const DatabaseConfiguration &configuration);

    const DatabaseConfiguration &configuration() const { return m_configuration; }
    FairPool &pool() { return m_pool; }
    SharedResults &sharedResults() { return m_sharedResults; }
    /// Calls `use` with the engine of the address that has the least work, and lets its exceptions through. While `mayRepeat`, the next
    /// address is tried when one is gone. Throws engine::Error(Unavailable) while none can be used.
    void run(const std::function<void(engine::Engine &)> &use, const std::function<bool()> &mayRepeat);
    const std::vector<std::unique_ptr<Replica>> &replicas() const { return m_replicas; }
    /// Asks each address what statements ask it, at most once a second; may take two seconds for each. Also false while no worker has been
    /// free for as long as a statement may take.
    bool isReady();
    /// What users are told while it is unavailable.
    [[nodiscard]] std::string unavailableMessage() const;

private:
    using Clock = std::chrono::steady_clock;

    std::vector<Replica *> fitReplicas() const;

    const DatabaseConfiguration m_configuration;
    std::vector<std::unique_ptr<Replica>> m_replicas;
    std::mutex m_readyMutex;
    bool m_isReady = false;
    Clock::time_point m_readyAsked {};
    SharedResults m_sharedResults;
    FairPool m_pool; ///< the last member: its workers use the others
};

} // namespace server
