#pragma once

#include <atomic>
#include <cstdint>

namespace server {

/// How one thread stands to the others when all processors are busy. Lowered it gets about a tenth of what each of them gets, and whoever
/// of them wakes goes first. It never stands still, so it may hold what the others wait for. Does nothing where the system would not let a
/// thread return from there. Any thread may lower it, one at a time; its own restores it.
class ThreadPriority {
public:
    /// Of the calling thread, whose work is short until it is lowered.
    ThreadPriority();
    void lower();
    void restore();
    bool isLow() const { return m_isLow; }
    /// False where lower() does nothing.
    [[nodiscard]] static bool canLower();

private:
    const std::uint64_t m_thread;
    std::atomic<bool> m_isLow { false };
};

} // namespace server
