#pragma once

#include "platform/connection/socket_connection.h"
#include "server_client/server_session.h"

#include <functional>
#include <memory>

namespace client {

/// Sends statements to application servers.
class ServerChannel : public platform::StatementChannel {
public:
    using LogInAgain = std::function<void(const platform::SessionEnded &)>;

    ServerChannel(std::shared_ptr<server_client::ServerSession> session, LogInAgain logInAgain)
        : m_session(std::move(session))
        , m_logInAgain(std::move(logInAgain))
    {
    }

    packet::PacketPtr run(const std::string &statement, std::stop_token stop, const std::function<void(std::int64_t)> &progress) override
    try {
        return m_session->query(statement, stop, progress);
    } catch (const server_client::Error &error) {
        if (error.failure() == server_client::Failure::SessionEnded)
            throw platform::SessionEnded(QString::fromUtf8(error.what()));
        throw;
    }
    void logInAgain(const platform::SessionEnded &ended) override { m_logInAgain(ended); }

private:
    std::shared_ptr<server_client::ServerSession> m_session;
    LogInAgain m_logInAgain;
};

} // namespace client
