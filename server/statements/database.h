#pragma once

#include "engine/engine.h"
#include "server/base/fair_pool.h"
#include "server/statements/database_configuration.h"
#include "server/statements/shared_results.h"

#include <functional>
#include <memory>
#include <mutex>

namespace server {

/// A configured database: its engine, opened when it is first needed and again after it was gone, and the workers that run its
/// statements. Why it is unavailable is for the operator's log alone, as it may name accounts and hosts. To be used from any thread.
class Database {
public:
    explicit Database(const DatabaseConfiguration &configuration);

    const DatabaseConfiguration &configuration() const { return m_configuration; }
    FairPool &pool() { return m_pool; }
    SharedResults &sharedResults() { return m_sharedResults; }
    /// Calls `use` with the engine and lets its exceptions through. Throws engine::Error(Unavailable) while the database cannot be
    /// opened; it is tried again at most once a second. A file that has been replaced is opened anew within a second.
    void run(const std::function<void(engine::Engine &)> &use);
    /// Asks the database what statements ask it, at most once a second; may take two seconds. Also false while no worker has been
    /// free for as long as a statement may take.
    bool isReady();
    /// What users are told while it is unavailable.
    [[nodiscard]] std::string unavailableMessage() const;

private:
    using Clock = std::chrono::steady_clock;

    std::shared_ptr<engine::Engine> open();
    void forgetReplaced();
    void giveUp(const std::shared_ptr<engine::Engine> &engine, const std::string &reason);
    bool answers();

    const DatabaseConfiguration m_configuration;
    std::mutex m_openMutex;
    std::shared_ptr<engine::Engine> m_engine;
    std::string m_fault; ///< why it was unavailable the last time, as the log has it
    Clock::time_point m_openTried {};
    Clock::time_point m_lookedAt {}; ///< whether it has been replaced
    std::mutex m_readyMutex;
    bool m_isReady = false;
    bool m_hasAnswered = false; ///< once
    Clock::time_point m_readyAsked {};
    SharedResults m_sharedResults;
    FairPool m_pool; ///< the last member: its workers use the others
};

} // namespace server
