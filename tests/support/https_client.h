#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

/// What came back for one request.
struct HttpReply {
    int status = 0; ///< 0: nothing that can be read
    std::map<std::string, std::string> headers {}; ///< names in small letters
    std::string body {};
    bool complete = false; ///< false: the connection broke before the end
};

/// Further headers of a request, each ended by CR LF.
using HttpHeaders = std::string;

HttpHeaders bearer(const std::string &token);

/// One blocking TLS connection to 127.0.0.1. Whoever expects no answer must not ask for one: there is no time limit.
class HttpsClient {
public:
    /// Checks the server's certificate against the file, unless it is empty. Throws std::exception when there is no connection.
    explicit HttpsClient(std::uint16_t port, const std::string &trustedCertificate = {});
    HttpsClient(const HttpsClient &) = delete;
    ~HttpsClient();

    HttpReply get(std::string_view path, const HttpHeaders &headers = {});
    HttpReply post(std::string_view path, std::string_view body, const HttpHeaders &headers = {});

    /// Throws std::exception when the connection is gone.
    void send(std::string_view bytes);
    /// The next reply; never throws.
    HttpReply receive();
    /// The same, but hands the body on as it comes instead of keeping it.
    HttpReply receive(const std::function<void(std::string_view)> &take);
    /// At least one byte of what comes next; empty at the end of the connection, however it ended.
    std::string receiveSome();
    /// Closes without goodbye; bytes under way are thrown away on both sides.
    void reset();
    /// The port of this end.
    std::uint16_t ownPort() const;

private:
    struct Connection;
    std::unique_ptr<Connection> m_connection;
};
