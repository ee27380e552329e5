#include "server/base/thread_priority.h"

#include <thread>

#ifdef _WIN32
#include <windows.h>
#elif defined(__linux__)
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#endif

namespace server {

namespace {

enum class Place { Normal, Low };

#ifdef _WIN32
std::uint64_t ownThread() { return GetCurrentThreadId(); }

bool put(std::uint64_t thread, Place place)
{
    const HANDLE handle = OpenThread(THREAD_SET_INFORMATION, FALSE, DWORD(thread));
    const bool isDone = handle && SetThreadPriority(handle, place == Place::Low ? THREAD_PRIORITY_LOWEST : THREAD_PRIORITY_NORMAL);
    if (handle)
        CloseHandle(handle);
    return isDone;
}
#elif defined(__linux__)
std::uint64_t ownThread() { return std::uint64_t(gettid()); }

/// A tenth of the share of others is left, so that what holds a lock that they want gives it back.
constexpr int lowered = 10;
/// Nanoseconds; Linux from 6.12 on gives the processor at once to who wakes and wants it for a shorter time than who has it.
constexpr std::uint64_t shortTurn = 100'000;

/// As the system call takes them; the C library has no name for it.
struct Attributes {
    std::uint32_t size = sizeof(Attributes);
    std::uint32_t policy = 0;
    std::uint64_t flags = 0x08; ///< the policy stays
    std::int32_t niceness = 0;
    std::uint32_t priority = 0;
    std::uint64_t turn = 0; ///< 0: the system's own
    std::uint64_t deadline = 0;
    std::uint64_t period = 0;
};

bool put(std::uint64_t thread, Place place)
{
    static const int usual = getpriority(PRIO_PROCESS, id_t(getpid())); // Linux has one for each thread; this is the first one's
    const int niceness = place == Place::Low ? std::min(usual + lowered, 19) : usual;
    const Attributes attributes { .niceness = niceness, .turn = place == Place::Low ? 0 : shortTurn };
    return syscall(SYS_sched_setattr, id_t(thread), &attributes, 0) == 0 || setpriority(PRIO_PROCESS, id_t(thread), niceness) == 0;
}
#else
std::uint64_t ownThread() { return 0; }
bool put(std::uint64_t, Place) { return false; }
#endif

} // namespace

ThreadPriority::ThreadPriority()
    : m_thread(ownThread())
{
    put(m_thread, Place::Normal);
}

void ThreadPriority::lower()
{
    if (!m_isLow && canLower())
        m_isLow = put(m_thread, Place::Low);
}

void ThreadPriority::restore()
{
    if (m_isLow)
        m_isLow = !put(m_thread, Place::Normal);
}

/// A thread that is given up for it tries whether there is a way back.
bool ThreadPriority::canLower()
{
    static const bool can = [] {
        bool returns = false;
        std::thread([&returns] { returns = put(ownThread(), Place::Low) && put(ownThread(), Place::Normal); }).join();
        return returns;
    }();
    return can;
}

} // namespace server
