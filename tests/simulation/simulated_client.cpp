#include "tests/simulation/simulated_client.h"

#include "tests/simulation/simulated_server.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace simulation {

namespace {

using Clock = std::chrono::steady_clock;
using server_client::Failure;
using Nature = StatementPlan::Nature;

/// Three tries of a login and a statement with all limits used up take about eight seconds.
constexpr double longestSeconds = 15;
constexpr double longestCancel = 3;

/// Asks to stop after a time, unless it is destroyed before.
class Canceller {
public:
    explicit Canceller(std::chrono::milliseconds after)
        : m_thread([this, after](const std::stop_token &ended) {
            std::mutex mutex;
            std::unique_lock lock(mutex);
            std::condition_variable_any().wait_for(lock, ended, after, [] { return false; });
            if (ended.stop_requested())
                return;
            m_at = Clock::now().time_since_epoch().count();
            m_stop.request_stop();
        })
    {
    }
    std::stop_token token() const { return m_stop.get_token(); }
    bool hasAsked() const { return m_at != 0; }
    double secondsSince() const { return std::chrono::duration<double>(Clock::now().time_since_epoch() - Clock::duration(m_at)).count(); }

private:
    std::stop_source m_stop {};
    std::atomic<Clock::rep> m_at { 0 };
    std::jthread m_thread; ///< the last member: it uses the others
};

bool has(const std::string &message, const char *part) { return message.find(part) != std::string::npos; }

} // namespace

SimulatedClient::SimulatedClient(std::uint64_t seed, int number, Surroundings surroundings)
    : m_seed(seed)
    , m_number(number)
    , m_surroundings(std::move(surroundings))
{
}

std::vector<Asked> SimulatedClient::run(int statements)
{
    std::vector<Asked> all;
    server_client::ServerSession session(m_surroundings.session);
    const auto logIn = [&] {
        m_jumpsAtLogin = m_surroundings.clockJumps();
        try {
            session.login("ann", server::test::password);
            return true;
        } catch (const server_client::Error &) {
            return false;
        }
    };
    bool isIn = logIn();
    for (int number = 0; number < statements; ++number) {
        m_surroundings.begins();
        isIn = isIn || logIn();
        const StatementPlan plan = planStatement(m_seed, m_number, number);
        all.push_back(isIn ? ask(session, plan) : Asked { .plan = plan, .outcome = "unreachable" });
        isIn = isIn && all.back().outcome != "session ended";
    }
    return all;
}

Asked SimulatedClient::ask(server_client::ServerSession &session, const StatementPlan &plan)
{
    Asked asked { .plan = plan };
    std::optional<Canceller> canceller;
    if (plan.cancelAfter)
        canceller.emplace(*plan.cancelAfter);
    std::uint64_t actsBefore = 0;
    const auto begun = Clock::now();
    try {
        const auto rows = session.query(plan.sql(), canceller ? canceller->token() : std::stop_token(), [&](std::int64_t) {
            if (!asked.resultBeganAt.empty())
                return;
            asked.resultBeganAt = logTime();
            actsBefore = m_surroundings.acts();
        });
        asked.outcome = "whole";
        asked.violation = plan.faultOf(*rows);
    } catch (const server_client::Error &error) {
        const char *const names[] = { "unreachable", "certificate", "login", "session ended", "refused", "result", "cancelled" };
        asked.outcome = names[int(error.failure())];
        asked.violation = judge(
            plan, error, { .isCancelled = canceller && canceller->hasAsked(), .clockJumps = m_surroundings.clockJumps() - m_jumpsAtLogin });
    } catch (const std::exception &error) {
        asked.outcome = "exception";
        asked.violation = error.what();
    }
    asked.seconds = std::chrono::duration<double>(Clock::now() - begun).count();
    asked.hasSentSince = !asked.resultBeganAt.empty() && m_surroundings.acts() != actsBefore;
    if (asked.seconds > longestSeconds || (canceller && canceller->hasAsked() && canceller->secondsSince() > longestCancel))
        asked.violation = "took " + std::to_string(asked.seconds) + " s";
    return asked;
}

std::string SimulatedClient::judge(const StatementPlan &plan, const server_client::Error &error, const Circumstances &circumstances)
{
    const std::string message = error.what();
    bool isAllowed = false;
    switch (error.failure()) {
    case Failure::Unreachable:
        isAllowed = true;
        break;
    case Failure::Cancelled:
        isAllowed = circumstances.isCancelled;
        break;
    case Failure::Result:
        isAllowed = plan.nature == Nature::TooLarge && has(message, "上限");
        break;
    case Failure::Refused:
        isAllowed = has(message, "规定的时间") || (plan.nature == Nature::Forbidden && has(message, "拒绝"))
            || (plan.nature == Nature::Failing && has(message, "ORA-01722"));
        break;
    case Failure::SessionEnded:
        // A clock that was set forward has ended the token.
        isAllowed = circumstances.clockJumps > 0;
        break;
    case Failure::Login:
    case Failure::Certificate:
        break;
    }
    return isAllowed && !message.empty() ? "" : "must not fail so: " + message;
}

} // namespace simulation
