#pragma once

#include <chrono>
#include <map>
#include <mutex>
#include <string>

namespace server {

/// Slows down whoever tries passwords: after some failures of a user name, or of an address, each further try has to wait longer.
/// A name that does not exist is treated like any other. To be used from any thread.
class LoginThrottle {
public:
    using Clock = std::chrono::steady_clock;

    static constexpr int freeTriesOfUser = 10;
    static constexpr int freeTriesOfAddress = 100;
    static constexpr auto longestWait = std::chrono::seconds(60);
    static constexpr auto forgottenAfter = std::chrono::minutes(15);
    static constexpr std::size_t mostKept = 20'000; ///< names and addresses; beyond them the oldest are forgotten

    /// How long this user at this address has to wait before the next try; 0 when a try is welcome. A welcome try is taken as failed
    /// until succeeded() is called, so that many at the same time count as well.
    std::chrono::seconds tryAt(Clock::time_point now, const std::string &user, const std::string &address);
    void succeeded(const std::string &user, const std::string &address);

private:
    struct Record {
        int failures = 0;
        Clock::time_point last {};
        Clock::time_point next {}; ///< no try before
    };
    static std::chrono::seconds waitOf(const Record &record, Clock::time_point now);
    void count(Record &record, int freeTries, Clock::time_point now);
    void forget(Clock::time_point now);

    std::mutex m_mutex;
    std::map<std::string, Record> m_users;
    std::map<std::string, Record> m_addresses;
};

} // namespace server
