#include "tests/support/cutting_proxy.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/write.hpp>

#include <array>
#include <atomic>
#include <future>
#include <limits>
#include <thread>

namespace net = boost::asio;
using net::ip::tcp;

namespace {

constexpr std::uint64_t never = std::numeric_limits<std::uint64_t>::max();

void end(tcp::socket &socket, bool resets)
{
    boost::system::error_code ignored;
    if (resets)
        socket.set_option(net::socket_base::linger(true, 0), ignored);
    socket.close(ignored);
}

} // namespace

struct CuttingProxy::State {
    /// One connection and its way to the target.
    struct Line : std::enable_shared_from_this<Line> {
        Line(net::io_context &io, State &owner, std::uint64_t allowed)
            : client(io)
            , server(io)
            , state(owner)
            , left(allowed)
        {
        }
        void cut()
        {
            end(client, state.resets);
            end(server, state.resets);
        }
        /// Reads from one side and writes to the other, again and again.
        void pass(tcp::socket &from, tcp::socket &to, std::array<char, 16384> &buffer, bool counted)
        {
            const auto self = shared_from_this();
            from.async_read_some(net::buffer(buffer), [=, this, &from, &to, &buffer](boost::system::error_code error, std::size_t size) {
                (void)self;
                if (state.frozen)
                    return state.keep(self);
                if (error)
                    return cut();
                const std::size_t passed = counted ? std::size_t(std::min<std::uint64_t>(size, left)) : size;
                left -= counted && left != never ? passed : 0;
                net::async_write(
                    to, net::buffer(buffer.data(), passed), [=, this, &from, &to, &buffer](boost::system::error_code failed, std::size_t) {
                        (void)self;
                        if (failed || left == 0)
                            return cut();
                        pass(from, to, buffer, counted);
                    });
            });
        }

        tcp::socket client;
        tcp::socket server;
        State &state;
        std::uint64_t left;
        std::array<char, 16384> up {};
        std::array<char, 16384> down {};
    };

    explicit State(std::uint16_t port)
        : target(net::ip::address_v4::loopback(), port)
    {
        accept();
        thread = std::thread([this] { io.run(); });
    }
    ~State()
    {
        io.stop();
        thread.join();
    }
    void keep(std::shared_ptr<Line> line) { kept.push_back(std::move(line)); }
    void accept()
    {
        auto line = std::make_shared<Line>(io, *this, allowed);
        acceptor.async_accept(line->client, [this, line](boost::system::error_code error) {
            if (error)
                return;
            lines.push_back(line);
            line->left = allowed;
            boost::system::error_code refused;
            line->server.connect(target, refused);
            if (refused) {
                line->cut();
            } else {
                line->pass(line->client, line->server, line->up, false);
                line->pass(line->server, line->client, line->down, true);
            }
            accept();
        });
    }

    net::io_context io;
    tcp::endpoint target;
    tcp::acceptor acceptor { io, tcp::endpoint(net::ip::address_v4::loopback(), 0) };
    std::atomic<std::uint64_t> allowed = never;
    std::atomic<bool> resets = true;
    std::atomic<bool> frozen = false;
    std::vector<std::weak_ptr<Line>> lines;
    std::vector<std::shared_ptr<Line>> kept; ///< when frozen
    std::thread thread;
};

CuttingProxy::CuttingProxy(std::uint16_t target)
    : m_state(std::make_unique<State>(target))
{
}

CuttingProxy::~CuttingProxy() = default;

std::uint16_t CuttingProxy::port() const { return m_state->acceptor.local_endpoint().port(); }

void CuttingProxy::cutAfter(std::uint64_t bytes, Cut how)
{
    m_state->resets = how == Cut::Reset;
    m_state->allowed = bytes;
    std::promise<void> done;
    net::post(m_state->io, [&] {
        for (const auto &line : m_state->lines) {
            if (const auto open = line.lock())
                open->left = bytes;
        }
        done.set_value();
    });
    done.get_future().wait();
}

void CuttingProxy::freeze() { m_state->frozen = true; }
