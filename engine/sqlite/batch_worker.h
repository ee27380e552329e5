#pragma once

#include "engine/sqlite/row_batch.h"

#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>

namespace engine {

/// A thread that works on batches in the order in which they are handed over.
class BatchWorker {
public:
    explicit BatchWorker(std::function<void(const RowBatch &)> work);
    BatchWorker(const BatchWorker &) = delete;
    /// Leaves the batches that wait undone.
    ~BatchWorker();

    /// Hands a batch over and leaves an empty one; waits while the worker lags behind. Throws what the work has thrown.
    void exchange(RowBatch &batch);
    /// Waits until everything is done. Throws what the work has thrown.
    void finish();

private:
    void run();
    void rethrow();

    std::function<void(const RowBatch &)> m_work;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::size_t m_waitingBytes = 0;
    std::deque<RowBatch> m_waiting;
    std::vector<RowBatch> m_empty;
    std::exception_ptr m_error;
    bool m_working = false;
    bool m_stopped = false;
    std::thread m_thread;
};

} // namespace engine
