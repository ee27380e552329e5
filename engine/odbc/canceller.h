#pragma once

#include "engine/dialect/connection.h"
#include "engine/odbc/handle.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace engine::odbc {

/// Cancels a statement when its job must stop, as often as it takes: a driver passes over a request that comes before the
/// statement has reached the server.
class Canceller {
public:
    Canceller(const Handle &statement, const Job &job)
        : m_statement(statement)
        , m_job(job)
        , m_thread([this](const std::stop_token &finished) { watch(finished); })
    {
    }
    Canceller(const Canceller &) = delete;

private:
    void watch(const std::stop_token &finished);
    void wakeUp();

    const Handle &m_statement;
    const Job &m_job;
    std::mutex m_mutex;
    std::condition_variable_any m_changed;
    std::jthread m_thread; ///< the last member: it ends before the others go
};

} // namespace engine::odbc
