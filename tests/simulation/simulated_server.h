#pragma once

#include "tests/simulation/simulation.h"

#include <atomic>
#include <functional>
#include <memory>

namespace simulation {

/// A server that ends and comes back, each time with an audit log of its own.
class SimulatedServer {
public:
    SimulatedServer(const World &world, std::string name, std::function<std::int64_t()> clock);
    SimulatedServer(const SimulatedServer &) = delete;

    void start();
    enum class End {
        Clean, ///< as an operator ends it
        Abrupt, ///< without waiting for anyone
    };
    /// Ends it and says what was not as it must be.
    std::vector<std::string> end(End how);
    /// 0 while it is down.
    const std::atomic<std::uint16_t> &port() const { return m_port; }

    /// What is known of a statement that arrived.
    struct Arrival {
        std::string tag;
        std::string time; ///< as in the log
        std::string result; ///< empty when the log has none
        bool mayLackResult = false; ///< the server ended abruptly
        bool mayBeRefused = false; ///< the client may have got an answer that the statement was not run, or not to its end
    };
    /// All that arrived, from the logs. To be called when the server is down.
    std::vector<Arrival> arrivals(const std::string &tagBegin) const;

private:
    struct Life {
        std::filesystem::path log;
        bool isAbrupt = false;
    };
    const World &m_world;
    const std::string m_name;
    const std::function<std::int64_t()> m_clock;
    std::atomic<std::uint16_t> m_port { 0 };
    std::vector<Life> m_lives {};
    std::unique_ptr<server::Server> m_server {};
};

/// The time now as the audit log writes it.
std::string logTime();

} // namespace simulation
