#pragma once

#include "platform/toolkit/exception.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <stop_token>

/// Thrown into the screen when the user cancels long work; the message says so.
class Abort : public Exception {
public:
    using Exception::Exception;
};

/// What long work looks at and reports while it runs on its own thread.
struct WorkProgress {
    std::stop_source stop; ///< a stop request comes from the Cancel button
    std::atomic<std::int64_t> rows { 0 }; ///< shown in the wait window
    std::atomic<std::int64_t> total { 0 }; ///< of the rows, when it is known beforehand; shown beside them
};

/// Runs `work` on a thread of its own and waits in a local loop that lets only painting and the wait window through; after
/// 0.4 s that window shows `caption`, the seconds, the rows and a Cancel button. Rethrows what `work` throws. On Cancel (or Esc)
/// it asks the work to stop and throws Abort(`cancelled`) at once, without waiting for it: `work` must own whatever it uses.
void runLongWork(const QString &caption, const QString &cancelled, std::function<void(WorkProgress &)> work);

/// Waits for the threads whose work was cancelled; called once before the program ends.
void waitForAbandonedWork();

/// True while runLongWork waits; commands that would start another must not be obeyed.
bool longWorkRuns();
