#include "tcp_relay.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <stdexcept>
#include <utility>
#include <vector>

namespace engine::test {

namespace {

/// False when one side has ended.
bool passOn(int from, int to)
{
    char bytes[64 * 1024];
    const ssize_t size = recv(from, bytes, sizeof bytes, 0);
    return size > 0 && send(to, bytes, std::size_t(size), MSG_NOSIGNAL) == size;
}

} // namespace

TcpRelay::TcpRelay(std::string localPath)
    : m_localPath(std::move(localPath))
    , m_listener(socket(AF_INET, SOCK_STREAM, 0))
{
    sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (bind(m_listener, reinterpret_cast<sockaddr *>(&address), size) != 0 || listen(m_listener, 8) != 0
        || getsockname(m_listener, reinterpret_cast<sockaddr *>(&address), &size) != 0)
        throw std::runtime_error("no port for the relay");
    m_port = ntohs(address.sin_port);
    m_thread = std::jthread([this] { acceptAll(); });
}

TcpRelay::~TcpRelay()
{
    shutdown(m_listener, SHUT_RDWR);
    m_thread.join();
    close(m_listener);
}

void TcpRelay::acceptAll()
{
    std::vector<std::jthread> connections;
    for (int client = accept(m_listener, nullptr, nullptr); client >= 0; client = accept(m_listener, nullptr, nullptr))
        connections.emplace_back([this, client] { carry(client); });
}

void TcpRelay::carry(int client) const
{
    const int server = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    m_localPath.copy(address.sun_path, sizeof address.sun_path - 1);
    if (connect(server, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0) {
        pollfd ends[] = { { client, POLLIN, 0 }, { server, POLLIN, 0 } };
        bool open = true;
        while (open && poll(ends, 2, -1) > 0)
            open = (!ends[0].revents || passOn(client, server)) && (!ends[1].revents || passOn(server, client));
    }
    close(server);
    close(client);
}

} // namespace engine::test
