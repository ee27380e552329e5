#include "server/base/fair_pool.h"

#include <algorithm>
#include <utility>

namespace server {

FairPool::FairPool(const Limits &limits)
    : m_limits(limits)
{
    for (std::size_t number = 0; number < limits.workers; ++number)
        m_workers.emplace_back([this] { work(); });
}

FairPool::~FairPool()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopped = true;
        while (!m_idle.empty())
            wakeOne();
    }
    for (std::thread &worker : m_workers)
        worker.join();
    for (auto &[user, line] : m_lines)
        for (const Ticket &ticket : line.waiting)
            *ticket = nullptr;
}

FairPool::Ticket FairPool::submit(const std::string &user, Work work)
{
    const std::lock_guard lock(m_mutex);
    const bool mustWait = m_running + m_waiting >= m_limits.workers;
    const auto line = m_lines.try_emplace(user).first;
    const bool userMustWait = line->second.running + line->second.waiting.size() >= m_limits.userRunning;
    if ((mustWait && m_waiting >= m_limits.waiting) || (userMustWait && line->second.waiting.size() >= m_limits.userWaiting)) {
        forgetIfIdle(line);
        return nullptr;
    }
    auto ticket = std::make_shared<Work>(std::move(work));
    line->second.waiting.push_back(ticket);
    ++m_waiting;
    if (!m_idle.empty())
        wakeOne();
    return ticket;
}

bool FairPool::withdraw(const std::string &user, const Ticket &ticket)
{
    const std::lock_guard lock(m_mutex);
    const auto line = m_lines.find(user);
    if (line == m_lines.end() || std::erase(line->second.waiting, ticket) == 0)
        return false;
    --m_waiting;
    forgetIfIdle(line);
    *ticket = nullptr;
    return true;
}

std::size_t FairPool::running() const
{
    const std::lock_guard lock(m_mutex);
    return m_running;
}

std::size_t FairPool::waiting() const
{
    const std::lock_guard lock(m_mutex);
    return m_waiting;
}

FairPool::Clock::duration FairPool::heldFor() const
{
    const std::lock_guard lock(m_mutex);
    return m_running < m_limits.workers ? Clock::duration::zero() : Clock::now() - m_lastFree;
}

void FairPool::work()
{
    std::unique_lock lock(m_mutex);
    while (!m_stopped) {
        const auto line = nextLine();
        if (line == m_lines.end()) {
            Sleeper sleeper;
            m_idle.push_back(&sleeper);
            sleeper.wake.wait(lock, [&sleeper] { return sleeper.isWoken; });
            continue;
        }
        Ticket ticket = std::move(line->second.waiting.front());
        line->second.waiting.pop_front();
        m_lastServed = line->first;
        --m_waiting;
        if (++m_running == m_limits.workers)
            m_lastFree = Clock::now();
        ++line->second.running; // keeps the line in its place
        lock.unlock();
        std::exchange(*ticket, nullptr)();
        ticket.reset();
        lock.lock();
        --m_running;
        --line->second.running;
        forgetIfIdle(line);
        // Nobody else is told: whatever may run now, this worker takes.
    }
}

void FairPool::wakeOne()
{
    Sleeper &sleeper = *m_idle.back();
    m_idle.pop_back();
    sleeper.isWoken = true;
    sleeper.wake.notify_one();
}

/// The user after the one served last, in alphabetical order, who has work waiting and may have more running.
FairPool::Lines::iterator FairPool::nextLine()
{
    const auto mayRun
        = [this](const Lines::value_type &line) { return !line.second.waiting.empty() && line.second.running < m_limits.userRunning; };
    const auto after = m_lines.upper_bound(m_lastServed);
    const auto found = std::find_if(after, m_lines.end(), mayRun);
    if (found != m_lines.end())
        return found;
    const auto wrapped = std::find_if(m_lines.begin(), after, mayRun);
    return wrapped == after ? m_lines.end() : wrapped;
}

void FairPool::forgetIfIdle(Lines::iterator line)
{
    if (line->second.waiting.empty() && line->second.running == 0)
        m_lines.erase(line);
}

} // namespace server
