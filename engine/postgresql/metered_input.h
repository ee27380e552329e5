#pragma once

#include <chrono>
#include <cstddef>
#include <vector>

namespace engine {

/// Stands between the socket of a session and the library, which by itself reads a row of any length in one go: while it is attached, the
/// library finds behind the number of its socket only what it is given, a portion at a time. It must not send anything meanwhile.
class MeteredInput {
public:
    MeteredInput() = default;
    MeteredInput(const MeteredInput &) = delete;
    ~MeteredInput();

    /// Throws Error(Unavailable) when the system has no more sockets.
    void attach(int socket);
    /// Gives the library its socket back, unless it has closed it: `socket` is the one that it has now. What it was given and has not read
    /// is lost.
    void detach(int socket);

    /// Waits until something can be given, or until the time is over. False: the time is over.
    bool wait(std::chrono::milliseconds time) const;
    /// Gives what has come, a portion at most; how many bytes. The end of the connection is given too.
    std::size_t give();
    /// Whether the library has read what it was given.
    bool isTaken() const;

private:
    void makePair();

    int m_number = -1; ///< of the library's socket; -1: not attached
    int m_socket = -1; ///< the real one meanwhile
    int m_giving = -1; ///< the two ends of our own connection
    int m_taking = -1;
    std::vector<char> m_portion;
};

} // namespace engine
