#pragma once

#include "platform/connection/socket_connection.h"
#include "server_client/server_session.h"

#include <functional>
#include <memory>

namespace client {

/// Sends statements to application servers.
class ServerChannel : public platform::StatementChannel {
public:
    explicit ServerChannel(std::shared_ptr<server_client::ServerSession> session)
        : m_session(std::move(session))
    {
    }

    packet::PacketPtr run(const std::string &statement, std::stop_token stop, const std::function<void(std::int64_t)> &progress) override
    {
        return m_session->query(statement, stop, progress);
    }

private:
    std::shared_ptr<server_client::ServerSession> m_session;
};

} // namespace client
