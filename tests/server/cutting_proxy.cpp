#include "tests/server/cutting_proxy.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/write.hpp>

#include <array>
#include <thread>

namespace server::test {

namespace asio = boost::asio;
using asio::ip::tcp;

struct CuttingProxy::Relay {
    Relay(std::uint16_t serverPort, std::uint64_t bytes, Cut how)
        : acceptor(io, { asio::ip::address_v4::loopback(), 0 })
        , left(bytes)
        , cut(how)
    {
        acceptor.async_accept(client, [this, serverPort](boost::system::error_code error) {
            if (error)
                return;
            server.connect({ asio::ip::address_v4::loopback(), serverPort });
            pass(client, server, toServer, false);
            pass(server, client, toClient, true);
        });
        thread = std::thread([this] { io.run(); });
    }
    ~Relay()
    {
        io.stop();
        thread.join();
    }

    using Buffer = std::array<char, 8 * 1024>;

    void pass(tcp::socket &from, tcp::socket &to, Buffer &buffer, bool isCounted)
    {
        from.async_read_some(asio::buffer(buffer), [&, isCounted](boost::system::error_code error, std::size_t count) {
            const std::size_t passed = isCounted ? std::size_t(std::min<std::uint64_t>(count, left)) : count;
            boost::system::error_code writeError;
            asio::write(to, asio::buffer(buffer, passed), writeError);
            left -= isCounted ? passed : 0;
            if (error || writeError || (isCounted && left == 0))
                return end();
            pass(from, to, buffer, isCounted);
        });
    }

    void end()
    {
        boost::system::error_code ignored;
        if (cut == Cut::Reset)
            client.set_option(asio::socket_base::linger(true, 0), ignored);
        client.close(ignored);
        server.close(ignored);
    }

    asio::io_context io {};
    tcp::acceptor acceptor;
    tcp::socket client { io };
    tcp::socket server { io };
    Buffer toServer {};
    Buffer toClient {};
    std::uint64_t left;
    Cut cut;
    std::thread thread {};
};

CuttingProxy::CuttingProxy(std::uint16_t serverPort, std::uint64_t bytes, Cut cut)
    : m_relay(std::make_unique<Relay>(serverPort, bytes, cut))
{
}

CuttingProxy::~CuttingProxy() = default;
std::uint16_t CuttingProxy::port() const { return m_relay->acceptor.local_endpoint().port(); }

} // namespace server::test
