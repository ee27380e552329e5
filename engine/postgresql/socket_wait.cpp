#include "engine/postgresql/socket_wait.h"

#ifdef _WIN32
#include <winsock2.h>
#else
#include <poll.h>
#include <sys/ioctl.h>
#endif
#ifdef __linux__
#include <linux/tcp.h>
#include <netinet/in.h>
#include <sys/socket.h>
#endif

namespace engine {

bool waitReadable(int socket, std::chrono::milliseconds time)
{
    // A broken connection counts as readable: the read that follows reports it.
#ifdef _WIN32
    WSAPOLLFD entry { SOCKET(socket), POLLIN, 0 };
    return WSAPoll(&entry, 1, int(time.count())) > 0;
#else
    pollfd entry { socket, POLLIN, 0 };
    return poll(&entry, 1, int(time.count())) > 0;
#endif
}

std::size_t readableBytes(int socket)
{
#ifdef _WIN32
    u_long bytes = 0;
    ioctlsocket(SOCKET(socket), FIONREAD, &bytes);
#else
    int bytes = 0;
    ioctl(socket, FIONREAD, &bytes);
#endif
    return std::size_t(bytes);
}

std::uint64_t receivedBytes([[maybe_unused]] int socket)
{
#ifdef __linux__
    tcp_info information {};
    socklen_t size = sizeof information;
    if (getsockopt(socket, IPPROTO_TCP, TCP_INFO, &information, &size) == 0)
        return information.tcpi_bytes_received;
#endif
    return 0;
}

} // namespace engine
