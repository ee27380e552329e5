#include "engine/postgresql/socket_wait.h"

#ifdef _WIN32
#include <winsock2.h>
#else
#include <poll.h>
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

} // namespace engine
