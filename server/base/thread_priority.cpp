#include "server/base/thread_priority.h"

#include <thread>

#ifdef _WIN32
#include <windows.h>
#elif defined(__linux__)
#include <sys/resource.h>
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

bool put(std::uint64_t thread, Place place)
{
    static const int usual = getpriority(PRIO_PROCESS, id_t(getpid())); // Linux has one for each thread; this is the first one's
    return setpriority(PRIO_PROCESS, id_t(thread), place == Place::Low ? std::min(usual + lowered, 19) : usual) == 0;
}
#else
std::uint64_t ownThread() { return 0; }
bool put(std::uint64_t, Place) { return false; }
#endif

} // namespace

ThreadPriority::ThreadPriority()
    : m_thread(ownThread())
{
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
