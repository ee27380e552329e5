#pragma once

#include "engine/engine.h"
#include "server/base/fair_pool.h"
#include "server/statements/database_configuration.h"

#include <mutex>

namespace server {

/// A configured database: its engine, opened when it is first needed, and the workers that run its statements.
/// To be used from any thread.
class Database {
public:
    explicit Database(const DatabaseConfiguration &configuration);

    const DatabaseConfiguration &configuration() const { return m_configuration; }
    FairPool &pool() { return m_pool; }
    /// Throws engine::Error(Unavailable) while the database cannot be opened; it is tried again at most once a second.
    std::shared_ptr<engine::Engine> engine();
    /// Asks the database for an answer, at most once a second; may take two seconds.
    bool isReady();

private:
    using Clock = std::chrono::steady_clock;

    bool answers();

    const DatabaseConfiguration m_configuration;
    std::mutex m_openMutex;
    std::shared_ptr<engine::Engine> m_engine;
    std::string m_openError;
    Clock::time_point m_openTried {};
    std::mutex m_readyMutex;
    bool m_isReady = false;
    Clock::time_point m_readyAsked {};
    FairPool m_pool; ///< the last member: its workers use the others
};

} // namespace server
