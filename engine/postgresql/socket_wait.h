#pragma once

#include <chrono>
#include <cstddef>

namespace engine {

/// Waits until something can be read from the socket of a database, or until the time is over. False: the time is over.
bool waitReadable(int socket, std::chrono::milliseconds time);

/// The bytes that lie ready in the socket.
std::size_t readableBytes(int socket);

} // namespace engine
