#include "server/statements/result_queue.h"

#include "engine/engine.h"

#include <utility>

namespace server {

namespace {

constexpr std::size_t worthWaking = 32 * 1024; ///< bytes; a smaller result is sent in one go when it is complete

} // namespace

ResultQueue::ResultQueue(std::size_t largestSize, std::function<void()> wake)
    : m_largestSize(largestSize)
    , m_wake(std::move(wake))
{
}

void ResultQueue::push(Piece piece, const std::stop_token &stop, Clock::time_point deadline)
{
    bool mustWake = false;
    {
        std::unique_lock lock(m_mutex);
        // One piece may be larger than the queue.
        const auto hasRoom = [&] { return m_size == 0 || m_size + piece->size() <= m_largestSize; };
        if (!hasRoom())
            m_wake();
        if (!hasRoom() && !m_taken.wait_until(lock, stop, deadline, hasRoom)) {
            if (stop.stop_requested())
                throw engine::Error(engine::Failure::Cancelled, "查询已取消");
            throw engine::Error(engine::Failure::TimeLimit, "查询和传送超过了规定的时间，请缩小查询范围");
        }
        if (m_isFinished)
            throw engine::Error(engine::Failure::Cancelled, "查询已取消");
        mustWake = m_size < worthWaking && m_size + piece->size() >= worthWaking;
        m_size += piece->size();
        m_portion.pieces.push_back(std::move(piece));
    }
    if (mustWake)
        m_wake();
}

void ResultQueue::give(std::vector<Piece> pieces)
{
    const std::lock_guard lock(m_mutex);
    if (!m_isFinished)
        m_portion.pieces = std::move(pieces);
}

void ResultQueue::finish(Outcome outcome, std::string message)
{
    {
        const std::lock_guard lock(m_mutex);
        if (std::exchange(m_isFinished, true))
            return;
        m_portion.isLast = true;
        m_portion.outcome = outcome;
        m_portion.message = std::move(message);
    }
    m_wake();
}

ResultQueue::Portion ResultQueue::take()
{
    Portion portion;
    {
        const std::lock_guard lock(m_mutex);
        portion = std::exchange(m_portion, {});
        m_size = 0;
    }
    m_taken.notify_one();
    return portion;
}

} // namespace server
