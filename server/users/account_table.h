#pragma once

#include "packet/packet.h"
#include "server/users/accounts.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>

namespace server {

/// The accounts that a query gives, by the names of its columns: user_name, password_hash and the fields of accountFields(), of which any
/// may be missing. A row that cannot be used is nobody's account, and `faults` tells of it. Throws std::runtime_error when a column is
/// missing or unknown, or when rows were cut.
Users accountsOf(const packet::Packet &rows, std::string &faults);

/// The accounts of a table that a centre keeps: asked again and again by a thread of its own.
class AccountTable : public Accounts {
public:
    struct Times {
        std::chrono::milliseconds refresh = std::chrono::seconds(1); ///< from an answer to the next question
        std::chrono::milliseconds stale = std::chrono::seconds(60); ///< how long the last answer may serve while there is no newer one
    };
    using Ask = std::function<packet::PacketPtr(std::stop_token)>;

    /// `ask` is called on that thread and may throw.
    AccountTable(Ask ask, Times times);
    ~AccountTable() override;
    [[nodiscard]] AccountPtr find(std::string_view name) override;
    [[nodiscard]] bool isReadable() override;
    [[nodiscard]] std::chrono::seconds overdue() override;

private:
    using Clock = std::chrono::steady_clock;
    void run(const std::stop_token &stop);
    void askOnce(const std::stop_token &stop);
    bool isFresh() const { return m_read && Clock::now() - *m_read <= m_times.refresh + m_times.stale; }

    const Ask m_ask;
    const Times m_times;
    const Clock::time_point m_begun = Clock::now();
    std::mutex m_mutex;
    std::condition_variable_any m_wake;
    std::optional<Clock::time_point> m_read; ///< when the question was asked whose answer is held
    LiveAccounts m_accounts;
    std::string m_fault; ///< why the last question got no answer
    std::string m_rowFaults; ///< what was wrong with single rows, told once
    std::jthread m_thread; ///< the last member: it uses the others
};

} // namespace server
