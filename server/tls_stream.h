#pragma once

// Asio 1.74 uses it without including it.
#include <utility>

#include <boost/asio/awaitable.hpp>
#include <boost/asio/ip/tcp.hpp>

#include <openssl/ssl.h>

#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace server {

/// One TLS connection of a server. It holds no buffer while nothing flows, and hands the system what is encrypted in large pieces.
/// To be used on its socket's executor alone; all waiting operations throw boost::system::system_error.
class TlsStream {
public:
    using Socket = boost::asio::ip::tcp::socket;

    TlsStream(Socket socket, SSL_CTX &context);
    TlsStream(const TlsStream &) = delete;

    boost::asio::awaitable<void> handshake();
    /// Waits for bytes; 0 when the peer will send no more.
    boost::asio::awaitable<std::size_t> read(std::span<char> into);
    /// What has arrived, without waiting: nothing when no bytes are there yet, 0 when the peer will send no more.
    std::optional<std::size_t> readArrived(std::span<char> into);
    boost::asio::awaitable<void> write(std::string_view bytes);
    /// Says that no more is coming, so that the peer can tell an end from a break.
    boost::asio::awaitable<void> finish();
    /// Frees what the writing of much has used.
    void releaseBuffers();

    Socket &socket() { return m_socket; }
    /// Bytes sent so far, encrypted.
    std::uint64_t bytesSent() const { return m_bytesSent; }

private:
    struct FreeSsl {
        void operator()(SSL *ssl) const { SSL_free(ssl); }
    };
    static BIO_METHOD *transferMethod();
    static int onRead(BIO *bio, char *into, int size);
    static int onWrite(BIO *bio, const char *bytes, int size);

    boost::asio::awaitable<void> flush();
    bool receive();
    [[noreturn]] void fail();

    Socket m_socket;
    std::unique_ptr<SSL, FreeSsl> m_ssl;
    std::vector<char> m_received {}; ///< encrypted; used up to m_position
    std::size_t m_position = 0;
    bool m_ended = false; ///< the peer has closed its side
    std::vector<char> m_toSend {}; ///< encrypted
    std::vector<char> m_sending {};
    bool m_isFlushing = false;
    std::uint64_t m_bytesSent = 0;
};

} // namespace server
