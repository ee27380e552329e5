#pragma once

#include "platform/connection/remote_server.h"
#include "platform/toolkit/exception.h"

#include <functional>
#include <memory>
#include <stop_token>

namespace platform {

/// Thrown by a channel that runs nothing more until somebody has logged in again; the message says why.
class SessionEnded : public Exception {
public:
    using Exception::Exception;
};

/// What carries a statement to a database and brings its rows back; called from threads other than the interface's.
class StatementChannel {
public:
    virtual ~StatementChannel() = default;
    /// Throws std::exception with a message for the user. Ends soon after a stop request; `progress` may be called with the rows so far.
    virtual packet::PacketPtr run(const std::string &statement, std::stop_token stop, const std::function<void(std::int64_t)> &progress)
        = 0;
    /// Called on the interface thread when run() has thrown SessionEnded. Comes back when the statement may be run again; throws otherwise.
    virtual void logInAgain(const SessionEnded &ended) { throw SessionEnded(ended); }
};

} // namespace platform

/// The connection of the host to an application server, or to an engine in its own process: its channel decides.
class TSocketConnectionEx : public TCustomRemoteServer {
    Q_OBJECT

public:
    using TCustomRemoteServer::TCustomRemoteServer;

    /// The settings under which the connection was designed; the channel of an embedded connection has no use for them.
    QString serverGuid;
    QString serverName;
    int port = 0;
    QString loginUser;
    QString loginPassword;

    bool connected() const { return m_channel != nullptr; }
    void setChannel(std::shared_ptr<platform::StatementChannel> channel) { m_channel = std::move(channel); }

    packet::PacketPtr runStatement(const QString &statement) override;

private:
    std::shared_ptr<platform::StatementChannel> m_channel;
};
