#include "tests/simulation/faulty_network.h"

// Asio 1.74 uses it without including it.
#include <utility>

#include <boost/asio/awaitable.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/write.hpp>

#include <algorithm>
#include <deque>
#include <thread>
#include <vector>

namespace simulation {

namespace net = boost::asio;
using net::ip::tcp;

struct FaultyNetwork::Gate {
    Gate(net::io_context &io, std::size_t ownNumber, const std::atomic<std::uint16_t> &ownTarget)
        : number(ownNumber)
        , target(ownTarget)
        , acceptor(io, tcp::endpoint(net::ip::address_v4::loopback(), 0))
    {
    }

    const std::size_t number;
    const std::atomic<std::uint16_t> &target;
    tcp::acceptor acceptor;
    std::size_t connections = 0;
    std::atomic<std::uint64_t> acts { 0 };
};

/// One connection and its way to the server.
class FaultyNetwork::Line : public std::enable_shared_from_this<Line> {
public:
    Line(net::io_context &io, tcp::socket client, Gate &gate, const LinePlan &plan)
        : m_client(std::move(client))
        , m_server(io)
        , m_gate(gate)
        , m_plan(plan)
    {
    }

    net::awaitable<void> run()
    {
        if (m_plan.fault == Fault::Refused || m_gate.target == 0)
            co_return cut(Fault::Reset);
        if (m_plan.connectDelay.count() > 0)
            co_await pause(m_plan.connectDelay);
        co_await m_server.async_connect({ net::ip::address_v4::loopback(), m_gate.target }, net::use_awaitable);
        m_server.set_option(tcp::no_delay(true));
        m_client.set_option(tcp::no_delay(true));
        spawn(Direction::ToServer);
        spawn(Direction::ToClient);
    }
    void cut(LinePlan::Fault how)
    {
        boost::system::error_code ignored;
        for (tcp::socket *socket : { &m_client, &m_server }) {
            if (how == Fault::Reset)
                socket->set_option(net::socket_base::linger(true, 0), ignored);
            socket->close(ignored);
        }
    }

private:
    using Fault = LinePlan::Fault;
    using Direction = LinePlan::Direction;

    net::awaitable<void> pause(std::chrono::microseconds time)
    {
        net::steady_timer timer(m_client.get_executor(), time);
        co_await timer.async_wait(net::use_awaitable);
    }

    void spawn(Direction direction)
    {
        net::co_spawn(
            m_client.get_executor(), [self = shared_from_this(), direction] { return self->pass(direction); },
            [self = shared_from_this()](std::exception_ptr error) {
                if (error)
                    self->cut(Fault::Closed);
            });
    }

    net::awaitable<void> pass(Direction direction)
    {
        tcp::socket &from = direction == Direction::ToServer ? m_client : m_server;
        tcp::socket &to = direction == Direction::ToServer ? m_server : m_client;
        const bool fails = m_plan.fault != Fault::None && direction == m_plan.direction;
        std::vector<char> piece(m_plan.largestPiece);
        std::uint64_t passed = 0;
        while (true) {
            boost::system::error_code ended;
            const std::size_t size = co_await from.async_read_some(net::buffer(piece), net::redirect_error(net::use_awaitable, ended));
            m_gate.acts += direction == Direction::ToServer && size > 0 ? 1 : 0;
            if (ended == net::error::eof)
                co_return endOf(to);
            if (ended)
                co_return cut(Fault::Reset);
            if (m_plan.pieceDelay.count() > 0)
                co_await pause(m_plan.pieceDelay);
            const bool failsNow = fails && passed <= m_plan.after && passed + size > m_plan.after;
            const std::size_t whole = failsNow ? std::size_t(m_plan.after - passed) : size;
            passed += size;
            if (!m_isSilent && !(m_swallows && fails))
                co_await net::async_write(to, net::buffer(piece.data(), whole), net::use_awaitable);
            if (failsNow)
                co_await fail(to, std::string_view(piece.data() + whole, size - whole));
        }
    }

    /// One side says that it has no more; the other side may still have.
    void endOf(tcp::socket &to)
    {
        boost::system::error_code ignored;
        if (!m_isSilent)
            to.shutdown(tcp::socket::shutdown_send, ignored);
    }

    net::awaitable<void> fail(tcp::socket &to, std::string_view rest)
    {
        switch (m_plan.fault) {
        case Fault::Silent:
            m_isSilent = true;
            break;
        case Fault::HalfOpen:
            m_swallows = true;
            break;
        case Fault::Flipped: {
            std::string wrong(rest);
            wrong[0] = char(wrong[0] ^ 0x10);
            co_await net::async_write(to, net::buffer(wrong), net::use_awaitable);
            break;
        }
        default:
            cut(m_plan.fault);
        }
    }

    tcp::socket m_client;
    tcp::socket m_server;
    Gate &m_gate;
    const LinePlan m_plan;
    bool m_isSilent = false;
    bool m_swallows = false;
};

struct FaultyNetwork::State {
    explicit State(Plan ownPlan)
        : plan(std::move(ownPlan))
    {
    }
    ~State()
    {
        io.stop();
        thread.join();
    }

    net::awaitable<void> accept(Gate &gate)
    {
        while (true) {
            tcp::socket client = co_await gate.acceptor.async_accept(net::use_awaitable);
            ++gate.acts;
            const auto line = std::make_shared<Line>(io, std::move(client), gate, plan(gate.number, gate.connections++));
            net::co_spawn(
                io, [line] { return line->run(); },
                [line](std::exception_ptr error) {
                    if (error)
                        line->cut(LinePlan::Fault::Reset);
                });
        }
    }

    Plan plan;
    net::io_context io { 1 };
    const net::executor_work_guard<net::io_context::executor_type> work { io.get_executor() };
    std::deque<Gate> gates; ///< stay where they are
    std::thread thread { [this] { io.run(); } }; ///< the last member: it uses the others
};

FaultyNetwork::FaultyNetwork(Plan plan)
    : m_state(std::make_unique<State>(std::move(plan)))
{
}

FaultyNetwork::~FaultyNetwork() = default;

std::uint16_t FaultyNetwork::addGate(const std::atomic<std::uint16_t> &target)
{
    Gate &gate = m_state->gates.emplace_back(m_state->io, m_state->gates.size(), target);
    const std::uint16_t port = gate.acceptor.local_endpoint().port();
    net::co_spawn(m_state->io, m_state->accept(gate), net::detached);
    return port;
}

std::uint64_t FaultyNetwork::clientActs(std::size_t gate) const { return m_state->gates[gate].acts; }

} // namespace simulation
