#pragma once

#include "server/statements/database.h"
#include "server/statements/result_format.h"
#include "server/statements/result_queue.h"
#include "server/statements/shared_results.h"

#include <atomic>
#include <functional>
#include <memory>
#include <optional>

namespace server {

struct StatementRequest {
    std::string user {};
    std::string sql {};
    Format format = Format::Arrow;
    packet::Compression compression = packet::Compression::None;
    std::string id {}; ///< for the audit log
    std::shared_ptr<const engine::Reader> reader {}; ///< null: the rules of tables do not apply
    std::function<void()> beforeRunning {}; ///< called on the worker
    std::function<bool()> mayGoOn {}; ///< false when the user has lost the right meanwhile; asked now and then
};

/// One statement from its place in the queue to the last byte of its result. Runs on a worker of the database; the other
/// operations are its session's, one at a time.
class Statement : public std::enable_shared_from_this<Statement> {
public:
    using Clock = std::chrono::steady_clock;

    /// `wake` is called from other threads when take() may have something.
    Statement(Database &database, StatementRequest request, std::function<void()> wake);

    /// Queues it, or waits for another that asks the same. When there is no room the result is Outcome::Busy.
    void submit();
    /// Ends it soon, wherever it is; take() gives the end.
    void abandon();
    /// To be called now and then: ends it when its time is over, also when no worker is free, or when the one that has it does not
    /// come back, or when the user may not go on.
    void check(Clock::time_point now);
    /// Ends it now; its user is told who did.
    void endByOperator();
    bool isWaiting() const { return m_isWaiting; } ///< for a worker
    ResultQueue::Portion take();

    const StatementRequest &request() const { return m_request; }
    const Database &database() const { return m_database; }
    Clock::time_point begun() const { return m_begun; }
    std::int64_t rows() const { return m_rows; }
    std::uint64_t bytes() const { return m_bytes; }

private:
    class CountingSink;
    std::string question() const;
    void queue();
    bool withdraw();
    void end(Outcome outcome, const std::string &message);
    void run();
    void finish(Outcome outcome, const std::string &message = {});
    void stream();
    void takeBytes(std::span<const std::byte> bytes);
    void hear(SharedResults::News news, const SharedResults::ResultPtr &result);

    Database &m_database;
    const StatementRequest m_request;
    const Clock::time_point m_begun = Clock::now();
    const Clock::time_point m_deadline;
    std::stop_source m_stop;
    const std::function<void()> m_wake;
    ResultQueue m_queue;
    FairPool::Ticket m_ticket;
    std::atomic<bool> m_isWaiting { true };
    std::unique_ptr<SharedResults::Lead> m_lead; ///< while others may wait for it
    std::vector<ResultQueue::Piece> m_gathered; ///< for them
    SharedResults::Keep m_keep = SharedResults::Keep::No;
    bool m_follows = false; ///< another that asks the same
    std::atomic<SharedResults::News> m_news { SharedResults::News::Result }; ///< what it has said; a result needs nothing more
    std::atomic<std::int64_t> m_rows { 0 };
    std::atomic<std::uint64_t> m_bytes { 0 };
};

} // namespace server
