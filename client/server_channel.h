#pragma once

#include "platform/remote/socket_connection.h"
#include "remote/server_session.h"

/// Sends statements to application servers.
class ServerChannel : public StatementChannel {
public:
    explicit ServerChannel(std::shared_ptr<remote::ServerSession> session)
        : m_session(std::move(session))
    {
    }

    packet::PacketPtr run(const std::string &statement, std::stop_token stop, const std::function<void(std::int64_t)> &progress) override
    {
        return m_session->query(statement, stop, progress);
    }

private:
    std::shared_ptr<remote::ServerSession> m_session;
};
