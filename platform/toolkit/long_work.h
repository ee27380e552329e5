#pragma once

#include "platform/toolkit/exception.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <stop_token>

/// Thrown into the screen when the user cancels long work; the message says so.
class Abort : public Exception {
public:
    using Exception::Exception;
};

namespace platform {

/// What long work looks at and reports while it runs on its own thread.
struct WorkProgress {
    std::stop_source stop; ///< a stop request comes from the Cancel button
    std::atomic<std::int64_t> rows { 0 }; ///< shown in the wait window
    std::atomic<std::int64_t> total { 0 }; ///< of the rows, when it is known beforehand; shown beside them
    QString unit = QStringLiteral("行"); ///< when something else is counted; set before the work begins
};

/// Runs `work` on a thread of its own and waits: for the blink of an eye alone, so that short work paints nothing twice, then in a local
/// loop that lets only painting and the wait window through; after 0.4 s that window shows `caption`, the seconds, the rows and a Cancel
/// button. Rethrows what `work` throws. On Cancel (or Esc) it asks the work to stop and throws Abort(`cancelled`) at once, without waiting
/// for it: `work` must own whatever it uses.
void runLongWork(const QString &caption, const QString &cancelled, std::function<void(WorkProgress &)> work);

/// The same wait for work that must stay on the interface thread, as laying out pages of a dataset must. The work reports how far it
/// is; only then painting and the wait window get their turn, so it should do so several times a second.
class InterfaceWork {
public:
    /// `unit`: what is counted.
    explicit InterfaceWork(const QString &caption, const QString &unit = QStringLiteral("行"));
    InterfaceWork(const InterfaceWork &) = delete;
    ~InterfaceWork();

    /// False once the user has cancelled.
    [[nodiscard]] bool report(std::int64_t done, std::int64_t total);

private:
    struct Wait;
    std::unique_ptr<Wait> m_wait;
};

/// Waits for the threads whose work was cancelled; called once before the program ends.
void waitForAbandonedWork();

/// True while one of both waits; commands that would start another must not be obeyed.
bool longWorkRuns();

} // namespace platform
