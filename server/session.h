#pragma once

#include "server/service.h"
#include "server/tls/tls_context.h"
#include "server/tls/tls_stream.h"

#include <atomic>

namespace server {

/// One connection of a client: reads its requests one after the other and sends the answers. Runs on its socket's executor;
/// start(), check(), closeIfIdle() and cancel() may be called from any thread.
class Session : public std::enable_shared_from_this<Session> {
public:
    using Clock = std::chrono::steady_clock;

    Session(TlsStream::Socket socket, std::shared_ptr<SSL_CTX> context, Service &service, std::string address);

    /// `ended` is called once, when the connection has been closed.
    void start(std::function<void()> ended);
    /// To be called now and then. Ends whatever the client has taken too long for, and watches the client while a statement takes its
    /// time.
    void check(Clock::time_point now);
    void closeIfIdle();
    /// Cancels the statement that runs.
    void cancel();
    /// Lets go of everything, when the executor has ended.
    void endAtOnce();
    /// True from a complete request to the end of its answer.
    bool isBusy() const { return m_isBusy; }
    const std::string &address() const { return m_address; }

private:
    template <class T>
    using Awaitable = boost::asio::awaitable<T>;
    using Milliseconds = std::chrono::milliseconds;

    Awaitable<void> run();
    Awaitable<bool> serveRequest();
    Awaitable<bool> receive(RequestReader &reader);
    Awaitable<bool> respond(const Response &response, bool keepAlive, bool withBody = true);
    Awaitable<Response> answerTo(const Request &request);
    Awaitable<bool> runQuery(const Request &request);
    Awaitable<bool> sendResult(Statement &statement, bool keepAlive);
    Awaitable<void> sendPortion(const ResultQueue::Portion &portion, bool keepAlive, bool &hasBegun);
    Awaitable<void> sendPieces(const std::vector<std::string> &pieces);
    Awaitable<void> flush();
    Awaitable<void> closeGracefully();
    void beginWatching();
    void watch();
    void readAhead();

    /// Sleeps until wake() was called.
    Awaitable<void> sleep();
    void wake();
    void post(void (Session::*action)());
    void expire();
    void cancelNow();
    void doCloseIfIdle();
    void setDeadline(Milliseconds fromNow);
    void clearDeadline();
    bool mayStay() const { return m_service.phase() == Service::Phase::Serving; }

    Service &m_service;
    const std::shared_ptr<SSL_CTX> m_context;
    const std::string m_address;
    TlsStream m_stream;
    std::function<void()> m_resume {}; ///< goes on with what sleeps
    std::atomic<Clock::rep> m_deadline;
    std::atomic<bool> m_isBusy { false };
    bool m_isWoken = false;
    bool m_isExpired = false;
    bool m_isIdle = false; ///< waits for a request of which nothing has arrived
    bool m_isWatching = false; ///< for the client's end while a statement runs
    bool m_watchPending = false;
    bool m_isBroken = false; ///< nothing more can or may be sent
    std::shared_ptr<Statement> m_statement {}; ///< the one that runs
    std::string m_queryAddress {}; ///< of its client
    std::string m_input {}; ///< what has arrived and was not used yet
};

} // namespace server
