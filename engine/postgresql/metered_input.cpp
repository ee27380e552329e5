#include "engine/postgresql/metered_input.h"

#include "engine/error.h"

#ifdef _WIN32
#include <winsock2.h>
#else
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#endif

namespace engine {

#ifdef _WIN32

// A socket's number cannot be given to another one here. The library reads for itself, and what lies ready is all that is known of it.
MeteredInput::~MeteredInput() = default;
void MeteredInput::attach(int socket) { m_number = socket; }
void MeteredInput::detach(int) { m_number = -1; }

bool MeteredInput::wait(std::chrono::milliseconds time) const
{
    WSAPOLLFD entry { SOCKET(m_number), POLLIN, 0 };
    return WSAPoll(&entry, 1, int(time.count())) > 0;
}

std::size_t MeteredInput::give()
{
    u_long bytes = 0;
    ioctlsocket(SOCKET(m_number), FIONREAD, &bytes);
    return bytes;
}

bool MeteredInput::isTaken() const { return true; }

#else

namespace {

constexpr std::size_t portionSize = 64 * 1024;

[[noreturn]] void failWithoutSockets() { throw Error(Failure::Unavailable, "系统没有空闲的文件描述符，无法读取数据库的结果；请稍候再试"); }

void close(int &descriptor)
{
    if (descriptor >= 0)
        ::close(descriptor);
    descriptor = -1;
}

/// Lets `number` stand for another socket, and no program that is started get it.
bool replace(int number, int socket) { return dup2(socket, number) >= 0 && fcntl(number, F_SETFD, FD_CLOEXEC) == 0; }

} // namespace

MeteredInput::~MeteredInput()
{
    close(m_socket);
    close(m_giving);
    close(m_taking);
}

void MeteredInput::makePair()
{
    int pair[2];
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, pair) != 0)
        failWithoutSockets();
    m_giving = pair[0];
    m_taking = pair[1];
    const int room = 4 * portionSize; // a portion takes more than its bytes
    setsockopt(m_giving, SOL_SOCKET, SO_SNDBUF, &room, sizeof room);
    for (const int end : pair) {
        fcntl(end, F_SETFL, O_NONBLOCK);
        fcntl(end, F_SETFD, FD_CLOEXEC);
    }
    m_portion.resize(portionSize);
}

void MeteredInput::attach(int socket)
{
    // What an earlier statement left there must not be read by this one.
    if (m_giving < 0 || !isTaken()) {
        close(m_giving);
        close(m_taking);
        makePair();
    }
    m_socket = fcntl(socket, F_DUPFD_CLOEXEC, 0);
    if (m_socket < 0)
        failWithoutSockets();
    m_number = socket;
    if (!replace(m_number, m_taking)) {
        detach(socket);
        failWithoutSockets();
    }
}

void MeteredInput::detach(int socket)
{
    if (m_number < 0)
        return;
    // A number that was closed may be another one's by now.
    if (socket == m_number)
        replace(m_number, m_socket);
    close(m_socket);
    m_number = -1;
}

bool MeteredInput::wait(std::chrono::milliseconds time) const
{
    // A broken connection counts as readable: its end is given then.
    pollfd entry { m_socket, POLLIN, 0 };
    return poll(&entry, 1, int(time.count())) > 0;
}

std::size_t MeteredInput::give()
{
    const ssize_t size = recv(m_socket, m_portion.data(), m_portion.size(), 0);
    if (size < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR))
        return 0;
    if (size > 0 && send(m_giving, m_portion.data(), std::size_t(size), MSG_NOSIGNAL) == size)
        return std::size_t(size);
    close(m_giving); // the other end reads what was given, then the end
    return 0;
}

bool MeteredInput::isTaken() const
{
    int bytes = 0;
    return ioctl(m_taking, FIONREAD, &bytes) != 0 || bytes == 0;
}

#endif

} // namespace engine
