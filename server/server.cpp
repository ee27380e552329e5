#include "server/server.h"

#include "server/base/address.h"
#include "server/base/log.h"
#include "server/base/thread_priority.h"
#include "server/control.h"
#include "server/session.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/use_awaitable.hpp>

#include <algorithm>
#include <set>
#include <thread>

namespace server {

namespace asio = boost::asio;
using asio::ip::tcp;

namespace {

constexpr auto lookEvery = std::chrono::milliseconds(100);
constexpr auto cancelTime = std::chrono::seconds(10); ///< for cancelled statements to end

std::shared_ptr<SSL_CTX> loadContext(const Configuration &configuration)
{
    return makeTlsContext(configuration.certificate.string(), configuration.privateKey.string());
}

} // namespace

/// Takes connections and looks after them.
class Server::Listener {
public:
    explicit Listener(const Configuration &configuration)
        : m_service(configuration)
        , m_context(loadContext(configuration))
        , m_acceptor(m_io)
    {
        listen(configuration);
        listenToOperator(configuration.control);
        asio::co_spawn(m_io, accept(), asio::detached);
        asio::co_spawn(m_io, checkSessions(), asio::detached);
        for (std::size_t number = 0; number < configuration.ioThreads; ++number)
            m_threads.emplace_back([this] { run(); });
    }

    ~Listener()
    {
        m_io.stop();
        for (std::thread &thread : m_threads)
            thread.join();
        forEachSession([](Session &session) { session.endAtOnce(); });
    }

    std::uint16_t port() const { return m_acceptor.local_endpoint().port(); }
    Service &service() { return m_service; }

    void reload()
    {
        m_service.auditLog().reopen();
        auto context = loadContext(m_service.configuration());
        const std::lock_guard lock(m_mutex);
        m_context = std::move(context);
    }

    void stop()
    {
        using Phase = Service::Phase;
        const Configuration &configuration = m_service.configuration();
        m_service.setPhase(Phase::Draining);
        std::this_thread::sleep_for(configuration.drainTime);
        m_service.setPhase(Phase::Refusing);
        forEachSession([](Session &session) { session.closeIfIdle(); });
        if (!becomesQuiet(configuration.stopTime)) {
            logLine("仍有查询没有完成，现在取消");
            forEachSession([](Session &session) { session.cancel(); });
            becomesQuiet(cancelTime);
        }
    }

private:
    void run()
    {
        const ThreadPriority priority;
        while (!m_io.stopped()) {
            try {
                m_io.run();
            } catch (const std::exception &error) {
                logLine(std::string("服务出错，继续运行：") + error.what());
            }
        }
    }

    void listen(const Configuration &configuration)
    {
        try {
            const tcp::endpoint endpoint(asio::ip::make_address(configuration.address), configuration.port);
            m_acceptor.open(endpoint.protocol());
            m_acceptor.set_option(tcp::acceptor::reuse_address(true));
            m_acceptor.bind(endpoint);
            m_acceptor.listen();
        } catch (const boost::system::system_error &error) {
            throw std::runtime_error("无法在 " + configuration.address + ":" + std::to_string(configuration.port) + " 上监听："
                + error.code().message() + "；请检查 listen 的地址和端口是否被占用");
        }
    }

    /// A server serves without it, too.
    void listenToOperator(const std::filesystem::path &path)
    try {
        if (!path.empty())
            m_control = std::make_unique<Control>(m_io, path, m_service);
    } catch (const std::exception &error) {
        logLine(std::string("警告：") + error.what());
    }

    asio::awaitable<void> accept()
    {
        while (true) {
            tcp::socket socket(asio::any_io_executor(asio::make_strand(m_io)));
            boost::system::error_code error;
            co_await m_acceptor.async_accept(socket, asio::redirect_error(asio::use_awaitable, error));
            if (!error)
                begin(std::move(socket));
            else
                co_await pause(); // out of descriptors, say
        }
    }

    void begin(tcp::socket socket)
    try {
        // An IPv4 address as such, also when the connection came in as IPv6.
        const std::string peer = socket.remote_endpoint().address().to_string();
        const std::string address = addressOf(peer).value_or(peer);
        const std::lock_guard lock(m_mutex);
        if (!hasRoomFor(addressGroup(address))) {
            ++m_service.metrics().refusedConnections;
            return;
        }
        const auto session = std::make_shared<Session>(std::move(socket), m_context, m_service, address);
        m_sessions.insert(session);
        ++m_addresses[session->addressGroup()];
        ++m_service.metrics().connections;
        session->start([this, session] { forget(session); });
    } catch (const std::exception &error) {
        logLine(std::string("无法接受一个连接：") + error.what());
    }

    /// When all places are taken, whoever has the most has to give one to whoever has fewer.
    bool hasRoomFor(const std::string &address)
    {
        const Configuration &configuration = m_service.configuration();
        const auto own = m_addresses.find(address);
        const std::size_t held = own == m_addresses.end() ? 0 : own->second;
        if (held >= configuration.connectionsPerAddress)
            return false;
        if (m_sessions.size() < configuration.connections)
            return true;
        const auto most = std::max_element(
            m_addresses.begin(), m_addresses.end(), [](const auto &left, const auto &right) { return left.second < right.second; });
        return most->second > held + 1 && closeOneOf(most->first);
    }

    /// One that waits for nothing, best of a client that has not said who it is; false when there is none.
    bool closeOneOf(const std::string &address)
    {
        Session *chosen = nullptr;
        for (const auto &session : m_sessions)
            if (session->addressGroup() == address && session->isDispensable() && (!chosen || chosen->isKnown()))
                chosen = session.get();
        if (chosen)
            chosen->giveWay();
        return chosen;
    }

    void forget(const std::shared_ptr<Session> &session)
    {
        const std::lock_guard lock(m_mutex);
        m_sessions.erase(session);
        const auto count = m_addresses.find(session->addressGroup());
        if (--count->second == 0)
            m_addresses.erase(count);
        --m_service.metrics().connections;
    }

    asio::awaitable<void> pause()
    {
        boost::system::error_code ignored;
        asio::steady_timer timer(m_io, lookEvery);
        co_await timer.async_wait(asio::redirect_error(asio::use_awaitable, ignored));
    }

    asio::awaitable<void> checkSessions()
    {
        while (true) {
            co_await pause();
            forEachSession([now = Session::Clock::now()](Session &session) { session.check(now); });
        }
    }

    template <class Action>
    void forEachSession(const Action &action)
    {
        const std::lock_guard lock(m_mutex);
        for (const auto &session : m_sessions)
            action(*session);
    }

    /// Waits until no request is being answered; false when the time passes first.
    bool becomesQuiet(std::chrono::milliseconds time)
    {
        const auto end = Session::Clock::now() + time;
        bool isQuiet = false;
        while (!isQuiet && Session::Clock::now() < end) {
            isQuiet = true;
            forEachSession([&](const Session &session) { isQuiet &= !session.isBusy(); });
            if (!isQuiet)
                std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        return isQuiet;
    }

    asio::io_context m_io {}; ///< the first member: the service's workers and the connections use it
    Service m_service;
    std::mutex m_mutex {};
    std::shared_ptr<SSL_CTX> m_context;
    std::set<std::shared_ptr<Session>> m_sessions {};
    std::map<std::string, std::size_t> m_addresses {};
    tcp::acceptor m_acceptor;
    std::unique_ptr<Control> m_control {}; ///< null: nobody may look
    std::vector<std::thread> m_threads {};
};

Server::Server(const Configuration &configuration)
    : m_listener(std::make_unique<Listener>(configuration))
{
}

Server::~Server() = default;
std::uint16_t Server::port() const { return m_listener->port(); }
void Server::reload() { m_listener->reload(); }
void Server::stop() { m_listener->stop(); }
Service &Server::service() { return m_listener->service(); }

} // namespace server
