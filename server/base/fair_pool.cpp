#include "server/base/fair_pool.h"

#include <algorithm>
#include <utility>

namespace server {

namespace {

using Clock = FairPool::Clock;

constexpr auto longWork = std::chrono::milliseconds(100);
constexpr auto muchUse = std::chrono::seconds(1); ///< of workers' time, after which a user yields from the first
constexpr auto mostUse = std::chrono::seconds(5); ///< that is remembered
constexpr auto littleUse = std::chrono::milliseconds(10); ///< is not remembered
constexpr int leak = 10; ///< a tenth of the time that passes is forgiven
constexpr auto forgetEvery = std::chrono::seconds(1);

Clock::duration usedAt(Clock::time_point now, Clock::duration used, Clock::time_point before)
{
    return std::max(used - (now - before) / leak, Clock::duration::zero());
}

} // namespace

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
    forgetIdleOnes();
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
    ThreadPriority priority;
    std::unique_lock lock(m_mutex);
    while (!m_stopped) {
        const auto line = nextLine();
        if (line == m_lines.end()) {
            Sleeper sleeper;
            m_idle.push_back(&sleeper);
            sleeper.wake.wait(lock, [&sleeper] { return sleeper.isWoken; });
            continue;
        }
        run(line, priority, lock);
        // Nobody else is told: whatever may run now, this worker takes.
    }
}

void FairPool::run(Lines::iterator line, ThreadPriority &priority, std::unique_lock<std::mutex> &lock)
{
    Line &user = line->second;
    Ticket ticket = std::move(user.waiting.front());
    user.waiting.pop_front();
    m_lastServed = line->first;
    --m_waiting;
    const Running own { ticket, Clock::now(), priority };
    if (++m_running == m_limits.workers)
        m_lastFree = own.begun;
    ++user.running; // keeps the line in its place
    m_atWork.push_back(&own);
    if (usedAt(own.begun, user.used, user.usedAt) > muchUse)
        priority.lower();
    lock.unlock();
    std::exchange(*ticket, nullptr)();
    priority.restore(); // before it takes the lock that all want; look() may still lower it once more
    lock.lock();
    const auto now = Clock::now();
    user.used = std::min<Clock::duration>(usedAt(now, user.used, user.usedAt) + (now - own.begun), mostUse);
    user.usedAt = now;
    priority.restore();
    std::erase(m_atWork, &own);
    --m_running;
    --user.running;
    forgetIfIdle(line);
}

void FairPool::look(const Ticket &ticket, Clock::time_point now)
{
    const std::lock_guard lock(m_mutex);
    const auto own = std::ranges::find(m_atWork, ticket, [](const Running *running) -> const Ticket & { return running->ticket; });
    if (own != m_atWork.end() && now - (*own)->begun > longWork)
        (*own)->priority.lower();
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
    const bool isScarce = m_running + m_limits.workers / 4 >= m_limits.workers;
    const std::size_t mostRunning = isScarce ? 1 : m_limits.userRunning;
    const auto mayRun
        = [mostRunning](const Lines::value_type &line) { return !line.second.waiting.empty() && line.second.running < mostRunning; };
    const auto after = m_lines.upper_bound(m_lastServed);
    const auto found = std::find_if(after, m_lines.end(), mayRun);
    if (found != m_lines.end())
        return found;
    const auto wrapped = std::find_if(m_lines.begin(), after, mayRun);
    return wrapped == after ? m_lines.end() : wrapped;
}

void FairPool::forgetIfIdle(Lines::iterator line)
{
    if (line->second.waiting.empty() && line->second.running == 0 && line->second.used < littleUse)
        m_lines.erase(line);
}

void FairPool::forgetIdleOnes()
{
    const auto now = Clock::now();
    if (now - m_forgot < forgetEvery)
        return;
    m_forgot = now;
    std::erase_if(m_lines, [now](const auto &line) {
        const auto &[user, own] = line;
        return own.waiting.empty() && own.running == 0 && usedAt(now, own.used, own.usedAt) < littleUse;
    });
}

} // namespace server
