#include "server/base/thread_priority.h"

#include <thread>

#ifdef _WIN32
#include <windows.h>
#elif defined(__linux__)
#include <sched.h>
#include <unistd.h>
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

bool put(std::uint64_t thread, Place place)
{
    const sched_param none {};
    return sched_setscheduler(pid_t(thread), place == Place::Low ? SCHED_IDLE : SCHED_OTHER, &none) == 0;
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
