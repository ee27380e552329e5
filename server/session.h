#pragma once

#include "server/http/request_reader.h"
#include "server/service.h"
#include "server/tls/tls_context.h"
#include "server/tls/tls_stream.h"

#include <atomic>
#include <functional>
#include <memory>

namespace server {

/// One connection of a client: reads its requests one after the other and sends the answers. Runs on its socket's executor;
/// start(), check(), closeIfIdle(), giveWay() and cancel() may be called from any thread.
class Session : public std::enable_shared_from_this<Session> {
public:
    using Clock = std::chrono::steady_clock;

    Session(TlsStream::Socket socket, std::shared_ptr<SSL_CTX> context, Service &service, std::string address);

    /// `ended` is called once, when the connection has been closed.
    void start(std::function<void()> ended);
    /// To be called now and then. Ends whatever has taken too long, and watches the client while a statement takes its time.
    void check(Clock::time_point now);
    void closeIfIdle();
    /// Closes it, unless a request arrives that is still answered.
    void giveWay();
    /// Neither answers a request nor has been told to give way.
    bool isDispensable() const { return !isBusy() && !m_givesWay; }
    /// Cancels the statement that runs.
    void cancel();
    /// Lets go of everything, when the executor has ended.
    void endAtOnce();
    /// True from a complete request to the end of its answer.
    bool isBusy() const { return m_state >= State::Answering; }
    /// True once the client has shown who its user is.
    bool isKnown() const { return m_isKnown; }
    /// The client's, with a network of IPv6 for one; see addressGroup().
    const std::string &addressGroup() const { return m_addressGroup; }

private:
    enum class State {
        Idle, ///< waits for a request of which nothing has arrived
        Receiving,
        Closing, ///< all answers have been sent
        Answering,
        Watching, ///< answers, and looks for the client's end meanwhile
        Broken, ///< nothing more can or may be sent; the statement is still to end
    };
    template <class T>
    using Awaitable = boost::asio::awaitable<T>;
    using Milliseconds = std::chrono::milliseconds;

    Awaitable<void> run();
    Awaitable<bool> serveRequest();
    Awaitable<bool> receive(RequestReader &reader);
    Awaitable<bool> respond(const Response &response, After after, Content content = Content::Whole);
    Awaitable<Response> answerTo(const Request &request);
    Awaitable<bool> runQuery(const Request &request);
    Awaitable<bool> sendResult(Statement &statement, After after);
    Awaitable<void> sendPortion(const ResultQueue::Portion &portion, After after, bool &hasBegun);
    Awaitable<void> sendPieces(const std::vector<ResultQueue::Piece> &pieces);
    Awaitable<void> flush();
    Awaitable<void> closeGracefully();
    void lookAfterStatement();
    void watch();
    void readAhead();

    /// Sleeps until wake() was called.
    Awaitable<void> sleep();
    void wake();
    void post(void (Session::*action)());
    void expire();
    void cancelNow();
    void doCloseIfIdle();
    void doGiveWay();
    void setDeadline(Milliseconds fromNow);
    void clearDeadline();
    After afterAnswerTo(const Request &request) const { return request.keepAlive && mayStay() ? After::KeepAlive : After::Close; }
    bool mayStay() const { return m_service.phase() == Service::Phase::Serving && !m_givesWay; }

    Service &m_service;
    const std::shared_ptr<SSL_CTX> m_context;
    const std::string m_address;
    const std::string m_addressGroup;
    std::atomic<bool> m_isKnown { false };
    std::atomic<bool> m_givesWay { false };
    TlsStream m_stream;
    std::function<void()> m_resume {}; ///< goes on with what sleeps
    std::atomic<Clock::rep> m_deadline;
    std::atomic<State> m_state { State::Receiving }; ///< isBusy() may be asked on other threads
    bool m_isWoken = false;
    bool m_isExpired = false;
    bool m_watchPending = false; ///< the socket has still been asked to tell of what arrives
    std::shared_ptr<Statement> m_statement {}; ///< the one that runs
    std::string m_queryAddress {}; ///< of its client
    std::string m_input {}; ///< what has arrived and was not used yet
};

} // namespace server
