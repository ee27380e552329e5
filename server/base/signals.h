#pragma once

#include <functional>

namespace server {

/// Waits until the program is asked to end. Calls `reload` each time that it is told to read its files again.
void waitForStop(const std::function<void()> &reload);

} // namespace server
