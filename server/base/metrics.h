#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace server {

/// What the server counts, for Prometheus. To be used from any thread.
class Metrics {
public:
    void countRequest(int status);
    void countStatement(std::chrono::microseconds duration, std::int64_t rows, std::uint64_t bytes);

    std::atomic<std::int64_t> connections { 0 }; ///< open now
    std::atomic<std::uint64_t> refusedConnections { 0 };
    std::atomic<std::uint64_t> loginFailures { 0 };
    std::atomic<std::uint64_t> passwordChecks { 0 };
    std::atomic<int> usersUnreadable { 0 }; ///< 1 while the accounts cannot be read
    std::atomic<std::int64_t> accountsOverdue { 0 }; ///< seconds for which a table of accounts has given no answer

    /// The text of /metrics; running and waiting statements by the name of the database.
    struct Load {
        std::size_t running = 0;
        std::size_t waiting = 0;
    };
    /// One address of a database, by its number from 1.
    struct Address {
        std::string database;
        std::size_t number = 1;
        bool isUp = true;
        std::size_t running = 0;
        double lag = 0; ///< seconds
    };
    std::string text(const std::map<std::string, Load> &databases, const std::vector<Address> &addresses = {}) const;

private:
    static constexpr std::array<double, 10> bounds { 0.005, 0.02, 0.1, 0.5, 1, 2.5, 10, 30, 120, 600 }; ///< seconds

    mutable std::mutex m_mutex;
    std::map<int, std::uint64_t> m_requests {};
    std::array<std::uint64_t, bounds.size() + 1> m_durations {}; ///< statements by the first bound that they stay below
    double m_seconds = 0;
    std::uint64_t m_rows = 0;
    std::uint64_t m_bytes = 0;
};

} // namespace server
