#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace engine {

/// Waits until something can be read from the socket of a database, or until the time is over. False: the time is over.
bool waitReadable(int socket, std::chrono::milliseconds time);

/// The bytes that lie ready in the socket.
std::size_t readableBytes(int socket);

/// The bytes that a TCP connection has received since it began; 0 where the system does not tell.
std::uint64_t receivedBytes(int socket);

} // namespace engine
