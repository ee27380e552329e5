#include "engine/odbc/canceller.h"

#include <algorithm>

namespace engine::odbc {

namespace {

using namespace std::chrono_literals;

constexpr auto cancelInterval = 10ms;

} // namespace

void Canceller::watch(const std::stop_token &finished)
{
    const std::stop_callback wake(m_job.options.stop, [this] { wakeUp(); });
    std::unique_lock lock(m_mutex);
    const auto mustStop = [this] { return m_job.mustStop(); };
    while (!finished.stop_requested() && !mustStop())
        m_changed.wait_until(lock, finished, std::min(m_job.deadline, Clock::now() + 1h), mustStop);
    while (!finished.stop_requested()) {
        SQLCancel(m_statement);
        m_changed.wait_for(lock, finished, cancelInterval, [] { return false; });
    }
}

void Canceller::wakeUp()
{
    {
        const std::lock_guard lock(m_mutex);
    }
    m_changed.notify_all();
}

} // namespace engine::odbc
