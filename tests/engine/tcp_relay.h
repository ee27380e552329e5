#pragma once

#include <string>
#include <thread>

namespace engine::test {

/// A TCP port of this machine behind which a local socket answers.
class TcpRelay {
public:
    /// Throws std::runtime_error when there is no port.
    explicit TcpRelay(std::string localPath);
    TcpRelay(const TcpRelay &) = delete;
    ~TcpRelay();

    int port() const { return m_port; }

private:
    void acceptAll();
    void carry(int client) const;

    std::string m_localPath;
    int m_listener;
    int m_port = 0;
    std::jthread m_thread;
};

} // namespace engine::test
