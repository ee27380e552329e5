#include "tests/support/https_client.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl/context.hpp>
#include <boost/asio/ssl/stream.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/buffer_body.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>

#include <algorithm>
#include <limits>
#include <vector>

namespace asio = boost::asio;
namespace http = boost::beast::http;
using asio::ip::tcp;

namespace {

constexpr std::size_t partSize = 64 * 1024;

} // namespace

struct HttpsClient::Connection {
    asio::io_context io {};
    asio::ssl::context context { asio::ssl::context::tls_client };
    asio::ssl::stream<tcp::socket> stream { io, context };
    boost::beast::flat_buffer buffer {};
};

HttpHeaders bearer(const std::string &token) { return "Authorization: Bearer " + token + "\r\n"; }

HttpsClient::HttpsClient(std::uint16_t port, const std::string &trustedCertificate)
    : m_connection(std::make_unique<Connection>())
{
    auto &stream = m_connection->stream;
    if (!trustedCertificate.empty()) {
        // The stream has taken over the context's settings already.
        SSL_CTX *const context = SSL_get_SSL_CTX(stream.native_handle());
        SSL_CTX_load_verify_locations(context, trustedCertificate.c_str(), nullptr);
        stream.set_verify_mode(asio::ssl::verify_peer);
        SSL_set1_host(stream.native_handle(), "localhost");
    }
    stream.next_layer().connect({ asio::ip::address_v4::loopback(), port });
    stream.next_layer().set_option(tcp::no_delay(true));
    stream.handshake(asio::ssl::stream_base::client);
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

void HttpsClient::send(std::string_view bytes) { asio::write(m_connection->stream, asio::buffer(bytes)); }

HttpReply HttpsClient::receive()
{
    std::string body;
    HttpReply reply = receive([&body](std::string_view bytes) { body += bytes; });
    reply.body = std::move(body);
    return reply;
}

HttpReply HttpsClient::receive(const std::function<void(std::string_view)> &take)
{
    http::response_parser<http::buffer_body> parser;
    parser.body_limit(std::numeric_limits<std::uint64_t>::max());
    boost::beast::error_code error;
    http::read_header(m_connection->stream, m_connection->buffer, parser, error);
    if (error)
        return {};
    HttpReply reply { .status = int(parser.get().result_int()) };
    for (const auto &field : parser.get()) {
        std::string name(field.name_string());
        std::transform(name.begin(), name.end(), name.begin(), [](char letter) { return char(std::tolower(std::uint8_t(letter))); });
        reply.headers[name] = std::string(field.value());
    }
    std::vector<char> part(partSize);
    while (!parser.is_done() && (!error || error == http::error::need_buffer)) {
        parser.get().body().data = part.data();
        parser.get().body().size = part.size();
        http::read(m_connection->stream, m_connection->buffer, parser, error);
        take({ part.data(), part.size() - parser.get().body().size });
    }
    reply.complete = parser.is_done();
    return reply;
}

std::string HttpsClient::receiveSome()
{
    std::string bytes(64 * 1024, '\0');
    boost::system::error_code error;
    bytes.resize(m_connection->stream.read_some(asio::buffer(bytes), error));
    return bytes;
}

void HttpsClient::reset()
{
    boost::system::error_code ignored;
    m_connection->stream.next_layer().set_option(asio::socket_base::linger(true, 0), ignored);
    m_connection->stream.next_layer().close(ignored);
}

std::uint16_t HttpsClient::ownPort() const { return m_connection->stream.next_layer().local_endpoint().port(); }
