#include "engine/sqlite/batch_worker.h"

namespace engine {

namespace {

constexpr std::size_t mostWaiting = 16; ///< batches; so many that the reader need not wait while a block is written out
constexpr std::size_t mostWaitingBytes = 4 * 1024 * 1024; ///< of rows with long texts

} // namespace

BatchWorker::BatchWorker(std::function<void(const RowBatch &)> work)
    : m_work(std::move(work))
    , m_thread([this] { run(); })
{
}

BatchWorker::~BatchWorker()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopped = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

void BatchWorker::exchange(RowBatch &batch)
{
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return (m_waiting.size() < mostWaiting && m_waitingBytes < mostWaitingBytes) || m_error; });
        rethrow();
        m_waitingBytes += batch.size();
        m_waiting.push_back(std::move(batch));
        batch = {};
        if (!m_empty.empty()) {
            batch = std::move(m_empty.back());
            m_empty.pop_back();
        }
    }
    m_changed.notify_all();
}

void BatchWorker::finish()
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return (m_waiting.empty() && !m_working) || m_error; });
    rethrow();
}

void BatchWorker::rethrow()
{
    if (m_error)
        std::rethrow_exception(m_error);
}

void BatchWorker::run()
{
    std::unique_lock lock(m_mutex);
    while (true) {
        m_changed.wait(lock, [this] { return m_stopped || !m_waiting.empty(); });
        if (m_stopped)
            return;
        RowBatch batch = std::move(m_waiting.front());
        m_waiting.pop_front();
        m_waitingBytes -= batch.size();
        m_working = true;
        lock.unlock();
        std::exception_ptr error;
        try {
            m_work(batch);
        } catch (...) {
            error = std::current_exception();
        }
        // A huge one is not kept.
        if (batch.size() < mostWaitingBytes / mostWaiting)
            batch.clear();
        else
            batch = {};
        lock.lock();
        m_working = false;
        m_empty.push_back(std::move(batch));
        m_error = error;
        m_changed.notify_all();
        if (m_error)
            return;
    }
}

} // namespace engine
