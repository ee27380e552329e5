#pragma once

#include "server/base/thread_priority.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace server {

/// Worker threads that serve the users in turn: whoever has much waiting holds nobody else up. A quarter of the workers is kept for users
/// who have nothing running, and whoever has worked much of late yields the processors to the others. To be used from any thread.
class FairPool {
public:
    using Clock = std::chrono::steady_clock;
    using Work = std::function<void()>;
    /// Names work that has been taken in. What the work holds is let go of as soon as it is done or withdrawn.
    using Ticket = std::shared_ptr<Work>;

    struct Limits {
        std::size_t workers = 1;
        std::size_t waiting = 0; ///< beyond what runs
        std::size_t userRunning = 1;
        std::size_t userWaiting = 0;
    };

    explicit FairPool(const Limits &limits);
    FairPool(const FairPool &) = delete;
    /// Waits for the work that runs; what waits is dropped.
    ~FairPool();

    /// Nothing when too much waits already, altogether or of this user. The work must not throw.
    Ticket submit(const std::string &user, Work work);
    /// True when the work had not begun and never will.
    bool withdraw(const std::string &user, const Ticket &ticket);
    /// To be called now and then for work that takes its time: when it has run for long, it yields the processors to other work.
    void look(const Ticket &ticket, Clock::time_point now);
    std::size_t running() const;
    std::size_t waiting() const;
    /// How long no worker has been free or has finished anything; zero while one is free.
    Clock::duration heldFor() const;

private:
    /// A user that has work, or has worked much of late.
    struct Line {
        std::deque<Ticket> waiting {};
        std::size_t running = 0;
        Clock::duration used {}; ///< of workers' time, as it stood at `usedAt`
        Clock::time_point usedAt {};
    };
    using Lines = std::map<std::string, Line>;

    /// A worker without work.
    struct Sleeper {
        std::condition_variable wake;
        bool isWoken = false;
    };

    /// Work that runs.
    struct Running {
        const Ticket &ticket;
        Clock::time_point begun;
        ThreadPriority &priority;
    };

    void work();
    void run(Lines::iterator line, ThreadPriority &priority, std::unique_lock<std::mutex> &lock);
    void wakeOne();
    Lines::iterator nextLine();
    void forgetIfIdle(Lines::iterator line);
    void forgetIdleOnes();

    const Limits m_limits;
    mutable std::mutex m_mutex;
    std::vector<Sleeper *> m_idle; ///< the one that worked last, whose memory is at hand, is woken first
    Lines m_lines;
    std::vector<const Running *> m_atWork;
    Clock::time_point m_forgot = Clock::now(); ///< those who had worked much
    std::string m_lastServed;
    std::size_t m_running = 0;
    std::size_t m_waiting = 0;
    Clock::time_point m_lastFree = Clock::now(); ///< when all workers run: since when none was free
    bool m_stopped = false;
    std::vector<std::thread> m_workers; ///< the last member: they use the others
};

} // namespace server
