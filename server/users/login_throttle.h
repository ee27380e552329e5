#pragma once

#include <chrono>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

namespace server {

/// Slows down whoever tries passwords. Failures are counted for a name at an address, for a name and for an address, and forgotten one
/// by one as time passes; beyond the free ones a further try has to wait until one more is forgotten. Where a name has logged in
/// before, neither what others do with it elsewhere counts nor what others do at that address with other names.
/// A name that does not exist is treated like any other. To be used from any thread.
class LoginThrottle {
public:
    using Clock = std::chrono::steady_clock;

    struct Allowance {
        int free; ///< failures at a time
        std::chrono::seconds forgotten; ///< the time in which one is
    };
    static constexpr Allowance here { 10, std::chrono::seconds(30) }; ///< a name at an address
    static constexpr Allowance hereBefore { 50, std::chrono::seconds(2) }; ///< where the name has logged in
    static constexpr Allowance ofName { 100, std::chrono::seconds(10) };
    static constexpr Allowance ofAddress { 100, std::chrono::seconds(3) };
    static constexpr auto rememberedFor = std::chrono::hours(24 * 30); ///< where a name has logged in
    static constexpr std::size_t mostKept = 50'000; ///< names at addresses; beyond them the oldest are forgotten

    enum class Answer {
        Welcome,
        Busy, ///< others try the same name here at this moment; no failure yet
        Wait, ///< too many failures
    };
    struct Turn {
        Answer answer = Answer::Welcome;
        std::chrono::seconds wait {};
    };
    /// Asks for a try. One that is welcome is under way until finish().
    [[nodiscard]] Turn begin(Clock::time_point now, const std::string &name, const std::string &address);
    enum class Result { Right, Wrong, NotTried };
    void finish(Clock::time_point now, const std::string &name, const std::string &address, Result result);

private:
    struct Record {
        double failures = 0; ///< at that time
        Clock::time_point last {};
        int underWay = 0;
        std::optional<Clock::time_point> loggedIn {};
    };
    using Pair = std::pair<std::string, std::string>;
    static double failuresAt(Clock::time_point now, const Record &record, const Allowance &allowance);
    static std::chrono::seconds waitOf(Clock::time_point now, const Record &record, const Allowance &allowance, int underWay = 0);
    static std::chrono::seconds waitIn(
        Clock::time_point now, const std::map<std::string, Record> &records, const std::string &key, const Allowance &allowance);
    static void count(Clock::time_point now, Record &record, const Allowance &allowance);
    static const Allowance &allowanceOf(const Record &record) { return record.loggedIn ? hereBefore : here; }
    void forget(Clock::time_point now);

    std::mutex m_mutex;
    std::map<Pair, Record> m_pairs;
    std::map<std::string, Record> m_names;
    std::map<std::string, Record> m_addresses;
    Clock::time_point m_forgot {};
};

} // namespace server
