#pragma once

#include "server/settings/configuration.h"

#include <cstdint>
#include <memory>

namespace server {

class Service;

/// A server from the construction, when it begins to listen, to stop().
class Server {
public:
    /// Throws std::runtime_error when a file cannot be used or the port is taken.
    explicit Server(const Configuration &configuration);
    Server(const Server &) = delete;
    /// Stops without waiting for anyone.
    ~Server();

    std::uint16_t port() const;
    /// Takes up a renewed certificate and begins a new audit log file. Throws std::runtime_error when the certificate cannot be used;
    /// the old one stays then.
    void reload();
    /// Says first that it is not ready, then refuses what comes, lets finish what runs as long as configured, and cancels the rest.
    /// Returns when all connections are closed.
    void stop();
    Service &service();

private:
    class Listener;
    std::unique_ptr<Listener> m_listener;
};

} // namespace server
