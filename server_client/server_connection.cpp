#include "server_client/server_connection.h"

#include "server_client/account.h"
#include "server_client/name_lookup.h"
#include "server_client/system_trust.h"

#include <boost/asio/connect.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/ssl.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/ssl.hpp>

#include <limits>

namespace server_client {

namespace net = boost::asio;
namespace http = boost::beast::http;
using boost::beast::error_code;

namespace {

constexpr std::size_t pieceBytes = 256 * 1024;

/// Finds out within half a minute that the other end is gone without a word.
void keepAlive(net::ip::tcp::socket &socket)
{
    error_code ignored;
    socket.set_option(net::socket_base::keep_alive(true), ignored);
    socket.set_option(net::ip::tcp::no_delay(true), ignored);
#if defined(TCP_KEEPIDLE) && defined(TCP_KEEPINTVL)
    socket.set_option(net::detail::socket_option::integer<IPPROTO_TCP, TCP_KEEPIDLE>(15), ignored);
    socket.set_option(net::detail::socket_option::integer<IPPROTO_TCP, TCP_KEEPINTVL>(5), ignored);
#endif
}

} // namespace

struct Trust::Context {
    net::ssl::context tls { net::ssl::context::tls_client };
};

Trust::Trust(const std::vector<std::string> &authorities)
    : m_context(std::make_unique<Context>())
{
    net::ssl::context &tls = m_context->tls;
    tls.set_options(net::ssl::context::default_workarounds | net::ssl::context::no_sslv2 | net::ssl::context::no_sslv3
        | net::ssl::context::no_tlsv1 | net::ssl::context::no_tlsv1_1);
    tls.set_verify_mode(net::ssl::verify_peer);
    trustSystem(SSL_CTX_get_cert_store(tls.native_handle()));
    for (const std::string &authority : authorities) {
        error_code error;
        tls.add_certificate_authority(net::buffer(authority), error);
        if (error)
            throw Error(Failure::Certificate, "证书不能读取，应是 PEM 格式的证书文件：" + error.message());
    }
}

Trust::~Trust() = default;

/// A connection that stands, or is being made.
class ServerConnection::Link {
public:
    Link(const Trust &trust, const ServerAddress &address)
        : m_address(address)
        , m_stream(m_io, trust.m_context->tls)
    {
    }

    void open(std::chrono::milliseconds limit, const std::stop_token &stop)
    {
        const auto deadline = std::chrono::steady_clock::now() + limit;
        const auto found = lookUp(m_address.host, m_address.port, limit, stop);
        lowest().expires_at(deadline);
        wait(stop, [&](auto done) { lowest().async_connect(found, [done](error_code error, const auto &) { done(error); }); });
        keepAlive(lowest().socket());
        SSL_set_tlsext_host_name(m_stream.native_handle(), m_address.host.c_str());
        m_stream.set_verify_callback(net::ssl::host_name_verification(m_address.host));
        wait(stop, [&](auto done) { m_stream.async_handshake(net::ssl::stream_base::client, done); });
    }

    void send(const http::request<http::string_body> &request, std::chrono::milliseconds limit, const std::stop_token &stop)
    {
        expireIn(limit);
        wait(stop, [&](auto done) { http::async_write(m_stream, request, [done](error_code error, std::size_t) { done(error); }); });
    }

    using Parser = http::response_parser<http::buffer_body>;
    void receiveHeader(Parser &parser, std::chrono::milliseconds limit, const std::stop_token &stop)
    {
        expireIn(limit);
        wait(stop, [&](auto done) {
            http::async_read_header(m_stream, m_received, parser, [done](error_code error, std::size_t) { done(error); });
        });
    }
    /// Hands over what comes next; call until the parser is done.
    void receivePiece(Parser &parser, std::chrono::milliseconds limit, const std::stop_token &stop, const Receive &receive)
    {
        auto &body = parser.get().body();
        body.data = m_piece.data();
        body.size = m_piece.size();
        body.more = true;
        expireIn(limit);
        wait(stop, [&](auto done) {
            http::async_read_some(m_stream, m_received, parser,
                [done](error_code error, std::size_t) { done(error == http::error::need_buffer ? error_code() : error); });
        });
        receive(int(parser.get().result_int()), { m_piece.data(), m_piece.size() - body.size });
    }

private:
    boost::beast::tcp_stream &lowest() { return boost::beast::get_lowest_layer(m_stream); }
    void expireIn(std::chrono::milliseconds limit) { lowest().expires_after(limit); }

    /// Starts an operation and waits until it is done; throws what became of it.
    template <class Start>
    void wait(const std::stop_token &stop, Start &&start)
    {
        if (stop.stop_requested())
            throw boost::system::system_error(net::error::operation_aborted);
        error_code result;
        start([&result](error_code error) { result = error; });
        // The operation has begun, so that whenever the request comes there is something to cancel.
        const std::stop_callback cancel(stop, [this] { net::post(m_io, [this] { lowest().cancel(); }); });
        m_io.restart();
        m_io.run();
        if (result)
            throw boost::system::system_error(result);
    }

    const ServerAddress &m_address;
    net::io_context m_io { 1 };
    boost::beast::ssl_stream<boost::beast::tcp_stream> m_stream;
    boost::beast::flat_buffer m_received;
    std::vector<std::byte> m_piece = std::vector<std::byte>(pieceBytes);
};

ServerConnection::ServerConnection(ServerAddress address, std::shared_ptr<const Trust> trust, Timeouts timeouts)
    : m_address(std::move(address))
    , m_trust(std::move(trust))
    , m_timeouts(timeouts)
{
}

ServerConnection::~ServerConnection() = default;

int ServerConnection::exchangeOver(
    std::unique_ptr<Link> link, const Request &request, Delivery &delivery, const std::stop_token &stop, const Receive &receive)
{
    constexpr unsigned http11 = 11;
    http::request<http::string_body> message(http::string_to_verb(request.method), request.path, http11, request.body);
    message.set(http::field::host, m_address.text());
    for (const auto &[name, value] : request.headers)
        message.set(name, value);
    message.prepare_payload();
    ++delivery.sends;
    link->send(message, m_timeouts.silence, stop);
    wipe(message.body()); // it may hold a password
    Link::Parser parser;
    parser.body_limit(std::numeric_limits<std::uint64_t>::max()); // the reader of the body knows its own limits
    link->receiveHeader(parser, m_timeouts.answer, stop);
    delivery.isAnswered = parser.get().result() == http::status::ok;
    while (!parser.is_done())
        link->receivePiece(parser, m_timeouts.silence, stop, receive);
    if (parser.keep_alive())
        m_link = std::move(link);
    return int(parser.get().result_int());
}

int ServerConnection::exchange(const Request &request, Delivery &delivery, const std::stop_token &stop, const Receive &receive)
try {
    // A connection that was kept may have been closed by the server meanwhile; that is no failure of this request.
    if (auto kept = std::exchange(m_link, nullptr)) {
        try {
            return exchangeOver(std::move(kept), request, delivery, stop, receive);
        } catch (const boost::system::system_error &) {
            if (!delivery.mayRepeat() || stop.stop_requested())
                throw;
        }
    }
    auto link = std::make_unique<Link>(*m_trust, m_address);
    link->open(m_timeouts.connect, stop);
    return exchangeOver(std::move(link), request, delivery, stop, receive);
} catch (const boost::system::system_error &error) {
    if (stop.stop_requested())
        throw Error(Failure::Cancelled, "查询已取消");
    if (error.code().category() == net::error::get_ssl_category()
        && ERR_GET_REASON(unsigned(error.code().value())) == SSL_R_CERTIFICATE_VERIFY_FAILED)
        throw Error(Failure::Certificate,
            "服务器 " + m_address.text() + " 的证书不受信任。请联系管理员，或用 --server-certificate 指定它的证书文件。");
    throw Error(
        Failure::Unreachable, "与服务器 " + m_address.text() + " 的连接不通或已断开（" + error.code().message() + "）。请检查网络后再试。");
}

} // namespace server_client
