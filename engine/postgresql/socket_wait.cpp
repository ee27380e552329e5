#include "engine/postgresql/socket_wait.h"

#ifdef _WIN32
#include <winsock2.h>
#else
#include <poll.h>
#include <sys/ioctl.h>
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

} // namespace engine
