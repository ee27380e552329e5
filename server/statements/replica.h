#pragma once

#include "engine/engine.h"
#include "server/statements/database_configuration.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

namespace server {

/// One address of a database: its engine, opened when it is first needed and again after it was gone. Why it is unavailable is for the
/// operator's log alone, as it may name accounts and hosts. To be used from any thread.
class Replica {
public:
    /// `name`: for the log.
    Replica(const DatabaseConfiguration &configuration, std::string url, std::string name);

    /// Throws engine::Error(Unavailable) while it cannot be opened; it is tried again at most once a second. A file that has been
    /// replaced is opened anew within a second.
    std::shared_ptr<engine::Engine> open();
    /// The next statement opens it anew, as a file or a server that came back may be another one.
    void giveUp(const std::shared_ptr<engine::Engine> &engine, const std::string &reason);
    /// Calls `use` with the engine and lets its exceptions through.
    void run(const std::function<void(engine::Engine &)> &use);
    /// Asks it what statements ask it. Takes two seconds at most.
    bool answers();
    /// False for what was gone within the last second or lies too far behind; asks how far, at most once a second.
    bool isFit();

    std::size_t running() const { return m_running; }
    bool isUp() const { return m_isUp; } ///< by what it did last
    std::chrono::milliseconds lag() const { return std::chrono::milliseconds(m_lag); } ///< by what it last said

private:
    using Clock = std::chrono::steady_clock;

    void forgetReplaced();

    const DatabaseConfiguration &m_configuration;
    const std::string m_url;
    const std::string m_name;
    std::mutex m_openMutex;
    std::shared_ptr<engine::Engine> m_engine;
    std::string m_fault; ///< why it was unavailable the last time, as the log has it
    Clock::time_point m_openTried {};
    Clock::time_point m_lookedAt {}; ///< whether it has been replaced
    bool m_hasAnswered = false; ///< once
    std::mutex m_lagMutex;
    Clock::time_point m_lagAsked {};
    std::atomic<std::chrono::milliseconds::rep> m_lag { 0 };
    std::atomic<std::size_t> m_running { 0 };
    std::atomic<bool> m_isUp { true };
};

} // namespace server
