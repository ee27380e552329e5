#pragma once

#include <cstdint>

namespace server {

/// How one thread stands to the others when all processors are busy. Lowered it gets about a tenth of what each of them gets. Does nothing
/// where the system would not let a thread return from there. Any thread may use it, one at a time.
class ThreadPriority {
public:
    /// Of the calling thread.
    ThreadPriority();
    void lower();
    void restore();
    bool isLow() const { return m_isLow; }
    /// False where lower() does nothing.
    [[nodiscard]] static bool canLower();

private:
    const std::uint64_t m_thread;
    bool m_isLow = false;
};

} // namespace server
