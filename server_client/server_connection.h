#pragma once

#include "server_client/server_address.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <stop_token>
#include <utility>
#include <vector>

namespace server_client {

/// By which certificates servers are known: those of the system's authorities and of others. Shared by connections.
class Trust {
public:
    /// `authorities` are the others, certificates in PEM; a server's own will do. Throws Error(Certificate) when one cannot be read.
    explicit Trust(const std::vector<std::string> &authorities);
    ~Trust();

private:
    friend class ServerConnection;
    struct Context;
    std::unique_ptr<Context> m_context;
};

struct Timeouts {
    std::chrono::milliseconds connect = std::chrono::seconds(5); ///< name, connection and handshake together
    std::chrono::milliseconds answer = std::chrono::minutes(15); ///< until the answer begins; the server's own limit is shorter
    std::chrono::milliseconds silence = std::chrono::seconds(60); ///< between two pieces of an answer
};

struct Request {
    std::string method;
    std::string path;
    std::string body {};
    std::vector<std::pair<std::string, std::string>> headers {};
};

/// How far a request has got, whichever servers it was sent to. It is sent again once at most, and never after a part of its answer has
/// come: a server may have died of it.
struct Delivery {
    int sends = 0; ///< how often it has left, if only in part
    bool isAnswered = false; ///< a result has begun to come

    bool mayRepeat() const { return sends < 2 && !isAnswered; }
};

/// One HTTPS connection to one server, made when it is needed and kept for the next request. Used by one thread at a time.
class ServerConnection {
public:
    /// Told the status of the answer and the next piece of its body.
    using Receive = std::function<void(int status, std::span<const std::byte> bytes)>;

    ServerConnection(ServerAddress address, std::shared_ptr<const Trust> trust, Timeouts timeouts);
    ServerConnection(const ServerConnection &) = delete;
    ~ServerConnection();

    /// Sends the request, as far as `delivery` allows it, and returns the status of the answer, its body handed over piece by piece. Throws
    /// Error(Unreachable) unless the whole answer arrives, Error(Certificate) and Error(Cancelled); what `receive` throws passes through.
    int exchange(const Request &request, Delivery &delivery, const std::stop_token &stop, const Receive &receive);

private:
    class Link;
    int exchangeOver(
        std::unique_ptr<Link> link, const Request &request, Delivery &delivery, const std::stop_token &stop, const Receive &receive);

    ServerAddress m_address;
    std::shared_ptr<const Trust> m_trust;
    Timeouts m_timeouts;
    std::unique_ptr<Link> m_link; ///< null while there is no connection
};

} // namespace server_client
