#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <stop_token>
#include <string>
#include <vector>

namespace server {

/// How a statement ended.
enum class Outcome {
    Complete,
    Refused, ///< by the gate
    Failed, ///< by the database
    Cancelled,
    TimeLimit,
    TooLarge, ///< the result, beyond a limit
    Unavailable, ///< the database
    Busy, ///< never begun
    Revoked, ///< the user may not go on
    Ended, ///< by the operator
};

/// The bytes of a result on their way from the thread that reads rows to the one that sends them. Bounded: the reader waits
/// while the client is slow.
class ResultQueue {
public:
    using Clock = std::chrono::steady_clock;
    using Piece = std::shared_ptr<const std::string>; ///< several clients may be sent the same

    /// What take() gives.
    struct Portion {
        std::vector<Piece> pieces {};
        bool isLast = false; ///< nothing follows
        Outcome outcome = Outcome::Complete; ///< when isLast
        std::string message {}; ///< for the user, when isLast and not complete
    };

    /// `wake` is called, on the reading thread, when there may be something to take.
    ResultQueue(std::size_t largestSize, std::function<void()> wake);

    /// Waits while the queue is full. Throws engine::Error(Cancelled) after a stop request, (TimeLimit) after the deadline.
    void push(Piece piece, const std::stop_token &stop, Clock::time_point deadline);
    /// A whole result that is there already; never waits.
    void give(std::vector<Piece> pieces);
    /// What comes after the first end is ignored.
    void finish(Outcome outcome, std::string message = {});
    /// Everything that is there; never waits.
    Portion take();

private:
    const std::size_t m_largestSize;
    const std::function<void()> m_wake;
    std::mutex m_mutex;
    std::condition_variable_any m_taken;
    Portion m_portion;
    std::size_t m_size = 0;
    bool m_isFinished = false;
};

} // namespace server
