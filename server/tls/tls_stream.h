#pragma once

// Asio 1.74 uses it without including it.
#include <utility>

#include <boost/asio/awaitable.hpp>
#include <boost/asio/ip/tcp.hpp>

#include <openssl/ssl.h>

#include <array>
#include <memory>
#include <string>
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
    enum class Arrival {
        Nothing, ///< yet
        Bytes,
        End, ///< the peer will send no more
    };
    /// Appends what has arrived, at most 16 KiB at a time, without waiting.
    Arrival readArrived(std::string &to);
    /// The same, but waits until there is something.
    boost::asio::awaitable<Arrival> read(std::string &to);
    /// Encrypts; the bytes wait in memory until flush().
    void add(std::string_view bytes);
    /// Sends what waits, and what is added meanwhile.
    boost::asio::awaitable<void> flush();
    /// Says that no more is coming, so that the peer can tell an end from a break.
    boost::asio::awaitable<void> finish();
    /// Frees what the writing of much has used.
    void releaseBuffers();

    Socket &socket() { return m_socket; }

private:
    struct FreeSsl {
        void operator()(SSL *ssl) const { SSL_free(ssl); }
    };
    static BIO_METHOD *transferMethod();
    static int onRead(BIO *bio, char *into, int size);
    static int onWrite(BIO *bio, const char *bytes, int size);

    Arrival decrypt(std::string &to);
    boost::asio::awaitable<void> receive();
    [[noreturn]] void fail();

    Socket m_socket;
    std::unique_ptr<SSL, FreeSsl> m_ssl;
    std::array<char, 2048> m_beginning; ///< for what comes first after a wait
    std::string_view m_received {}; ///< encrypted and not used yet
    bool m_ended = false; ///< the peer has closed its side
    std::vector<char> m_toSend {}; ///< encrypted
    std::vector<char> m_sending {};
};

} // namespace server
