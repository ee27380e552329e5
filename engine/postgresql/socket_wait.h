#pragma once

#include <chrono>

namespace engine {

/// Waits until something can be read from the socket of a database, or until the time is over. False: the time is over.
bool waitReadable(int socket, std::chrono::milliseconds time);

} // namespace engine
