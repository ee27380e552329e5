#include "tests/support/https_client.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/string_body.hpp>

#include <openssl/err.h>
#include <openssl/ssl.h>

#include <algorithm>
#include <csignal>
#include <limits>
#include <stdexcept>

namespace asio = boost::asio;
namespace http = boost::beast::http;
using asio::ip::tcp;

namespace {

constexpr std::size_t partSize = 64 * 1024;
constexpr std::size_t readAhead = 256 * 1024; ///< what one call of the system may bring

/// A stream that HTTP messages can be read from.
class TlsConnection {
public:
    TlsConnection(std::uint16_t port, const std::string &trustedCertificate)
        : m_context(SSL_CTX_new(TLS_client_method()), SSL_CTX_free)
        , m_ssl(nullptr, SSL_free)
    {
#ifdef SIGPIPE
        std::signal(SIGPIPE, SIG_IGN); // OpenSSL writes to connections that the server has closed
#endif
        SSL_CTX_set_read_ahead(m_context.get(), 1);
        SSL_CTX_set_default_read_buffer_len(m_context.get(), readAhead);
        if (!trustedCertificate.empty()) {
            SSL_CTX_load_verify_locations(m_context.get(), trustedCertificate.c_str(), nullptr);
            SSL_CTX_set_verify(m_context.get(), SSL_VERIFY_PEER, nullptr);
        }
        m_socket.connect({ asio::ip::address_v4::loopback(), port });
        m_socket.set_option(tcp::no_delay(true));
        m_ssl.reset(SSL_new(m_context.get()));
        SSL_set1_host(m_ssl.get(), "localhost");
        SSL_set_fd(m_ssl.get(), int(m_socket.native_handle()));
        if (SSL_connect(m_ssl.get()) != 1)
            throw std::runtime_error("no TLS connection");
    }
    TlsConnection(const TlsConnection &) = delete;
    /// Says goodbye, as far as the connection still stands.
    ~TlsConnection()
    {
        ERR_clear_error();
        if (m_socket.is_open())
            SSL_shutdown(m_ssl.get());
    }

    void write(std::string_view bytes)
    {
        std::size_t written = 0;
        ERR_clear_error();
        if (!bytes.empty() && SSL_write_ex(m_ssl.get(), bytes.data(), bytes.size(), &written) != 1)
            throw std::runtime_error("the connection is gone");
    }
    template <class Buffers>
    std::size_t read_some(const Buffers &buffers, boost::beast::error_code &error)
    {
        const asio::mutable_buffer into = *asio::buffer_sequence_begin(buffers);
        std::size_t count = 0;
        ERR_clear_error();
        error = {};
        if (SSL_read_ex(m_ssl.get(), into.data(), into.size(), &count) != 1)
            error = asio::error::eof;
        return count;
    }
    template <class Buffers>
    std::size_t read_some(const Buffers &buffers)
    {
        boost::beast::error_code error;
        const std::size_t count = read_some(buffers, error);
        if (error)
            throw boost::system::system_error(error);
        return count;
    }
    tcp::socket &socket() { return m_socket; }

private:
    asio::io_context m_io {};
    tcp::socket m_socket { m_io };
    std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> m_context;
    std::unique_ptr<SSL, decltype(&SSL_free)> m_ssl;
};

} // namespace

struct HttpsClient::Connection {
    TlsConnection stream;
    boost::beast::flat_buffer buffer {};
};

HttpHeaders bearer(const std::string &token) { return "Authorization: Bearer " + token + "\r\n"; }

HttpsClient::HttpsClient(std::uint16_t port, const std::string &trustedCertificate)
    : m_connection(new Connection { { port, trustedCertificate } })
{
}

HttpsClient::~HttpsClient() = default;

HttpReply HttpsClient::get(std::string_view path, const HttpHeaders &headers)
{
    send("GET " + std::string(path) + " HTTP/1.1\r\nHost: localhost\r\n" + headers + "\r\n");
    return receive();
}

HttpReply HttpsClient::post(std::string_view path, std::string_view body, const HttpHeaders &headers)
{
    send("POST " + std::string(path) + " HTTP/1.1\r\nHost: localhost\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" + headers
        + "\r\n" + std::string(body));
    return receive();
}

void HttpsClient::send(std::string_view bytes) { m_connection->stream.write(bytes); }

HttpReply HttpsClient::receive()
{
    std::string body;
    HttpReply reply = receive([&body](std::string_view bytes) { body += bytes; });
    reply.body = std::move(body);
    return reply;
}

HttpReply HttpsClient::receive(const std::function<void(std::string_view)> &take)
{
    http::response_parser<http::string_body> parser;
    parser.body_limit(std::numeric_limits<std::uint64_t>::max());
    auto onPart = [&take](std::uint64_t, boost::beast::string_view part, boost::beast::error_code &) {
        take({ part.data(), part.size() });
        return part.size();
    };
    parser.on_chunk_body(onPart);
    boost::beast::error_code error;
    http::read(m_connection->stream, m_connection->buffer, parser, error);
    if (!parser.is_header_done())
        return {};
    HttpReply reply { .status = int(parser.get().result_int()), .complete = !error };
    for (const auto &field : parser.get()) {
        std::string name(field.name_string());
        std::transform(name.begin(), name.end(), name.begin(), [](char letter) { return char(std::tolower(std::uint8_t(letter))); });
        reply.headers[name] = std::string(field.value());
    }
    take(parser.get().body());
    return reply;
}

std::string HttpsClient::receiveSome()
{
    std::string bytes(partSize, '\0');
    boost::beast::error_code error;
    bytes.resize(m_connection->stream.read_some(asio::buffer(bytes), error));
    return bytes;
}

void HttpsClient::reset()
{
    boost::system::error_code ignored;
    m_connection->stream.socket().set_option(asio::socket_base::linger(true, 0), ignored);
    m_connection->stream.socket().close(ignored);
}

std::uint16_t HttpsClient::ownPort() const { return m_connection->stream.socket().local_endpoint().port(); }
