#pragma once

#include "server/statements/result_queue.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace server {

/// Statements that ask the same at the same time share one run: one leads and the others wait for its result. Some results are kept
/// for a little while. To be used from any thread.
class SharedResults {
public:
    using Clock = std::chrono::steady_clock;

    struct Result {
        std::vector<ResultQueue::Piece> pieces {};
        std::uint64_t bytes = 0; ///< of the pieces
        std::int64_t rows = 0;
        Outcome outcome = Outcome::Complete;
        std::string message {};
    };
    using ResultPtr = std::shared_ptr<const Result>;

    /// What whoever waits is told, once.
    enum class News {
        Result,
        RunAgain, ///< the leader did not get to an end that others share
        RunAlone, ///< the result is too large to be shared
    };
    using Taker = std::function<void(News, const ResultPtr &)>; ///< called on any thread, the result null but for News::Result

    enum class Keep : bool { No, Yes };

    class Lead;

    /// `age`: how long after it began a run may still be joined, and its result be kept; zero: nothing is shared. `keptBytes`: of all
    /// results that are kept.
    SharedResults(std::chrono::milliseconds age, std::size_t keptBytes);

    bool isOn() const { return m_age.count() > 0; }
    /// Null when somebody else runs it, or has: `take` is told of the end, perhaps at once. Otherwise the caller runs it.
    std::unique_ptr<Lead> join(const std::string &question, Taker take);

private:
    struct Run {
        Clock::time_point begun;
        std::vector<Taker> waiting {};
        ResultPtr result {}; ///< once it is there
    };
    using RunPtr = std::shared_ptr<Run>;

    void end(const std::string &question, const RunPtr &run, News news, const ResultPtr &result, Keep keep);
    void forget(std::size_t room);
    void drop(const std::string &question, const RunPtr &run);

    const std::chrono::milliseconds m_age;
    const std::size_t m_largest;
    std::mutex m_mutex;
    std::map<std::string, RunPtr> m_runs; ///< by their question; the youngest that leads or is kept
    std::deque<std::pair<std::string, RunPtr>> m_kept; ///< the oldest first
    std::size_t m_keptBytes = 0;
};

/// The duty to end a run. Who lets go of it without having told a result lets one of those who wait run again.
class SharedResults::Lead {
public:
    Lead(SharedResults &results, std::string question, RunPtr run);
    Lead(const Lead &) = delete;
    ~Lead();
    void answer(const ResultPtr &result, Keep keep);
    /// The result is too large.
    void giveUp();

private:
    void end(News news, const ResultPtr &result, Keep keep);

    SharedResults &m_results;
    const std::string m_question;
    RunPtr m_run; ///< null after the end
};

} // namespace server
