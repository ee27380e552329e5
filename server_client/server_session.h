#pragma once

#include "packet/packet.h"
#include "server_client/account.h"
#include "server_client/server_connection.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>

namespace server_client {

struct SessionOptions {
    std::vector<ServerAddress> addresses; ///< at least one; the first is asked first
    std::vector<std::string> authorities {}; ///< PEM, besides the system's
    bool compressed = false; ///< for slow lines
    Timeouts timeouts {};
    std::chrono::milliseconds patience {}; ///< how long a statement waits for servers of which none answers: one may be starting again
    std::size_t mostRows = 2'000'000; ///< of one result, whatever the server sends
    std::uint64_t mostBytes = std::uint64_t(2) << 30;
};

/// A user's session with servers that answer alike: when one is gone the next is asked. Safe to use from several threads at once;
/// each statement has a connection of its own.
class ServerSession {
public:
    /// Told where statements go from now on, or "" when no server can be reached; on the thread that found out.
    using Watch = std::function<void(const std::string &address)>;

    /// Throws Error(Certificate).
    explicit ServerSession(SessionOptions options, Watch watch = {});
    ServerSession(const ServerSession &) = delete;
    ~ServerSession();

    /// Remembers the token alone. While the servers have too many logins at a time it waits, half a minute at most. Throws Error: Login
    /// when user or password are wrong, Unreachable when no server answers.
    Account login(const std::string &user, const std::string &password);
    /// The token from before ends; the session goes on with a new one. Throws Error, and the password is as before then unless the
    /// connection was lost on the way.
    Account changePassword(const std::string &before, const std::string &after);
    /// Tells one server that the user goes, and forgets the token. Never throws; ends soon after a stop request.
    void logout(const std::stop_token &stop);
    /// For the audit log: the user wanted a screen that the account does not have. Never throws.
    void reportRefusedScreen(const std::string &screen);
    /// Runs exactly one SELECT. A statement whose connection is lost before anything of its result has come is sent once more, to the
    /// next server that answers. Throws Error.
    packet::PacketPtr query(const std::string &statement, const std::stop_token &stop, const std::function<void(std::int64_t)> &progress);
    /// Whether the servers are asked to compress from now on.
    void setCompressed(bool compressed) { m_isCompressed = compressed; }
    /// The servers' clock, in seconds since 1970 of their own time zone.
    std::int64_t serverTime();

private:
    struct Answer {
        int status = 0;
        std::string text {}; ///< of an error, or of a small reply
    };
    /// Sends a request to the server at hand, and to the others in turn while they cannot be reached and it may be repeated. When none
    /// could be reached it begins again, until its patience ends.
    template <class Ask>
    auto withServer(Delivery &delivery, const Ask &ask, std::chrono::milliseconds patience = {});
    Answer call(std::size_t server, const Request &request, Delivery &delivery, const std::stop_token &stop,
        const ServerConnection::Receive &receiveRows);
    Answer callPatiently(std::size_t server, const Request &request, Delivery &delivery);
    Account takeToken(const Answer &answer);
    std::string token();
    template <class Send>
    Answer authorized(Delivery &delivery, const Send &send);
    packet::PacketPtr queryAt(std::size_t server, const std::string &statement, Delivery &delivery, const std::stop_token &stop,
        const std::function<void(std::int64_t)> &progress);
    void tell(const std::string &address);

    const SessionOptions m_options;
    std::atomic<bool> m_isCompressed { m_options.compressed };
    const Watch m_watch;
    const std::shared_ptr<const Trust> m_trust;
    std::mutex m_mutex; ///< for what follows
    std::string m_token; ///< empty: nobody is logged in
    std::size_t m_server = 0;
    std::optional<std::string> m_told;
    std::vector<std::vector<std::unique_ptr<ServerConnection>>> m_idle; ///< by server
};

} // namespace server_client
