#include "server/tls/tls_stream.h"

#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/write.hpp>

#include <openssl/err.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace server {

namespace asio = boost::asio;

namespace {

constexpr std::size_t receiveSize = 16 * 1024;
constexpr std::size_t keptSize = 4 * 1024; ///< buffers up to this size are kept while a connection is idle

[[noreturn]] void failBrokenTls() { throw boost::system::system_error(make_error_code(boost::system::errc::protocol_error)); }

} // namespace

TlsStream::TlsStream(Socket socket, SSL_CTX &context)
    : m_socket(std::move(socket))
    , m_ssl(SSL_new(&context))
{
    BIO *const bio = m_ssl ? BIO_new(transferMethod()) : nullptr;
    if (!bio)
        throw std::bad_alloc();
    BIO_set_data(bio, this);
    BIO_set_init(bio, 1);
    SSL_set_bio(m_ssl.get(), bio, bio);
    SSL_set_accept_state(m_ssl.get());
    m_socket.non_blocking(true);
    m_socket.set_option(asio::ip::tcp::no_delay(true));
}

BIO_METHOD *TlsStream::transferMethod()
{
    static BIO_METHOD *const method = [] {
        BIO_METHOD *made = BIO_meth_new(BIO_get_new_index() | BIO_TYPE_SOURCE_SINK, "transfer");
        BIO_meth_set_read(made, onRead);
        BIO_meth_set_write(made, onWrite);
        BIO_meth_set_ctrl(made, [](BIO *, int command, long, void *) -> long { return command == BIO_CTRL_FLUSH; });
        return made;
    }();
    return method;
}

int TlsStream::onRead(BIO *bio, char *into, int size)
{
    auto &stream = *static_cast<TlsStream *>(BIO_get_data(bio));
    BIO_clear_retry_flags(bio);
    const std::size_t taken = std::min(std::size_t(size), stream.m_received.size());
    if (taken == 0) {
        if (stream.m_ended)
            return 0;
        BIO_set_retry_read(bio);
        return -1;
    }
    std::memcpy(into, stream.m_received.data(), taken);
    stream.m_received.remove_prefix(taken);
    return int(taken);
}

int TlsStream::onWrite(BIO *bio, const char *bytes, int size)
{
    auto &stream = *static_cast<TlsStream *>(BIO_get_data(bio));
    BIO_clear_retry_flags(bio);
    stream.m_toSend.insert(stream.m_toSend.end(), bytes, bytes + size);
    return size;
}

asio::awaitable<void> TlsStream::handshake()
{
    while (true) {
        const int result = SSL_do_handshake(m_ssl.get());
        if (result == 1)
            break;
        if (SSL_get_error(m_ssl.get(), result) != SSL_ERROR_WANT_READ || m_ended)
            fail();
        co_await flush();
        co_await receive();
    }
    co_await flush();
}

TlsStream::Arrival TlsStream::readArrived(std::string &to)
{
    const Arrival before = decrypt(to);
    if (before != Arrival::Nothing)
        return before;
    thread_local std::array<char, receiveSize> bytes;
    boost::system::error_code error;
    const std::size_t count = m_socket.read_some(asio::buffer(bytes), error);
    if (error == asio::error::would_block || error == asio::error::try_again)
        return Arrival::Nothing;
    m_ended = error || count == 0;
    m_received = { bytes.data(), count };
    return decrypt(to);
}

asio::awaitable<TlsStream::Arrival> TlsStream::read(std::string &to)
{
    while (true) {
        const Arrival arrival = decrypt(to);
        co_await flush();
        if (arrival != Arrival::Nothing)
            co_return arrival;
        co_await receive();
    }
}

/// Uses up all that has been received.
TlsStream::Arrival TlsStream::decrypt(std::string &to)
{
    std::array<char, 4096> bytes;
    bool hasBytes = false;
    while (true) {
        std::size_t count = 0;
        ERR_clear_error();
        const int result = SSL_read_ex(m_ssl.get(), bytes.data(), bytes.size(), &count);
        if (result == 1) {
            to.append(bytes.data(), count);
            hasBytes = true;
            continue;
        }
        const int reason = SSL_get_error(m_ssl.get(), result);
        if (hasBytes)
            return Arrival::Bytes;
        if (reason == SSL_ERROR_ZERO_RETURN || m_ended)
            return Arrival::End;
        if (reason != SSL_ERROR_WANT_READ)
            fail();
        return Arrival::Nothing;
    }
}

asio::awaitable<void> TlsStream::receive()
{
    boost::system::error_code error;
    const auto count = co_await m_socket.async_read_some(asio::buffer(m_beginning), asio::redirect_error(asio::use_awaitable, error));
    if (error == asio::error::operation_aborted)
        throw boost::system::system_error(error);
    m_ended = error || count == 0;
    m_received = { m_beginning.data(), count };
}

void TlsStream::add(std::string_view bytes)
{
    std::size_t written = 0;
    ERR_clear_error();
    if (!bytes.empty() && SSL_write_ex(m_ssl.get(), bytes.data(), bytes.size(), &written) != 1)
        fail();
}

asio::awaitable<void> TlsStream::finish()
{
    ERR_clear_error();
    SSL_shutdown(m_ssl.get());
    co_await flush();
    m_socket.shutdown(Socket::shutdown_send);
}

void TlsStream::releaseBuffers()
{
    if (m_toSend.capacity() + m_sending.capacity() <= keptSize)
        return;
    m_toSend = {};
    m_sending = {};
}

asio::awaitable<void> TlsStream::flush()
{
    while (!m_toSend.empty()) {
        m_sending.clear();
        m_sending.swap(m_toSend);
        co_await asio::async_write(m_socket, asio::buffer(m_sending), asio::use_awaitable);
    }
}

void TlsStream::fail()
{
    ERR_clear_error();
    failBrokenTls();
}

} // namespace server
