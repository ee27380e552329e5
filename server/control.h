#pragma once

#include "server/service.h"

#include <boost/asio/io_context.hpp>

#include <filesystem>
#include <memory>
#include <string>

namespace server {

/// What the operator of this machine may ask of a server that runs, over a socket in the file system. The rights of its file, 0600, decide
/// who that is: the server's own user and root. A line with a command comes in, a line of JSON goes out:
///   list      {"statements":[{"id":…,"user":…,"address":…,"database":…,"state":"running" or "waiting","milliseconds":…,"rows":…,
///             "statement":…},…]}
///   end ID    {"ended":true}, or false when no statement has that name (any more)
class Control {
public:
    /// Listens from now on. Throws std::runtime_error when the file cannot be made, or another server listens there.
    Control(boost::asio::io_context &io, const std::filesystem::path &path, Service &service);
    Control(const Control &) = delete;
    /// Removes the file.
    ~Control();

private:
    struct Socket;
    std::unique_ptr<Socket> m_socket;
};

/// Sends a command to the server that listens at `path` and returns its line. Throws std::runtime_error when there is none.
std::string askServer(const std::filesystem::path &path, const std::string &command);

} // namespace server
