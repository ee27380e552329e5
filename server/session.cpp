#include "server/session.h"

#include "server/log.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>

#include <cstdio>

namespace server {

namespace asio = boost::asio;

namespace {

constexpr std::size_t largestBody = 66 * 1024; ///< the longest statement and a little, so that the gate can say what is wrong
constexpr std::size_t sendSize = 256 * 1024;
constexpr std::size_t mostReadAhead = 16 * 1024; ///< of the requests that follow
constexpr std::size_t mostDiscarded = 1024 * 1024;
constexpr auto farewellTime = std::chrono::seconds(2);
constexpr auto never = std::numeric_limits<Session::Clock::rep>::max();

Response failureOf(int status)
{
    switch (status) {
    case 408:
        return errorResponse(408, "timeout", "请求没有在规定的时间内发完，请检查网络后再试");
    case 413:
        return errorResponse(413, "length", "请求内容超过 64 KB 的上限，请减少条件或单号");
    case 431:
        return errorResponse(431, "header", "请求头太长，请检查客户端");
    default:
        return errorResponse(400, "request", "请求不是正确的 HTTP/1.1，请检查客户端");
    }
}

/// What the log says of a result that the client did not get.
Outcome brokenOutcome(const ResultQueue::Portion &last) { return last.outcome == Outcome::Complete ? Outcome::Cancelled : last.outcome; }

std::string chunkHead(std::size_t size)
{
    char head[24];
    return std::string(head, std::size_t(std::snprintf(head, sizeof head, "%zx\r\n", size)));
}

} // namespace

Session::Session(TlsStream::Socket socket, std::shared_ptr<SSL_CTX> context, Service &service, std::string address)
    : m_service(service)
    , m_context(std::move(context))
    , m_address(std::move(address))
    , m_stream(std::move(socket), *m_context)
    , m_alarm(m_stream.socket().get_executor())
    , m_deadline(never)
{
    m_alarm.expires_at(boost::asio::steady_timer::time_point::max());
}

void Session::start(std::function<void()> ended)
{
    setDeadline(m_service.configuration().handshakeTime);
    asio::co_spawn(
        m_stream.socket().get_executor(), [self = shared_from_this()] { return self->run(); },
        [ended = std::move(ended)](std::exception_ptr) { ended(); });
}

void Session::check(Clock::time_point now)
{
    if (m_deadline.load() <= now.time_since_epoch().count())
        post(&Session::expire);
    if (m_isBusy)
        post(&Session::beginWatching);
}

void Session::closeIfIdle() { post(&Session::doCloseIfIdle); }
void Session::cancel() { post(&Session::cancelAtOnce); }

void Session::post(void (Session::*action)())
{
    asio::post(m_stream.socket().get_executor(), [self = shared_from_this(), action] { (*self.*action)(); });
}

/// Whatever waits for the client ends with an error.
void Session::expire()
{
    if (m_deadline.load() > Clock::now().time_since_epoch().count())
        return;
    clearDeadline();
    m_isExpired = true;
    boost::system::error_code ignored;
    m_stream.socket().cancel(ignored);
}

void Session::doCloseIfIdle()
{
    if (!m_isIdle)
        return;
    boost::system::error_code ignored;
    m_stream.socket().cancel(ignored);
}

void Session::cancelAtOnce()
{
    if (m_statement)
        m_statement->abandon();
}

void Session::setDeadline(Milliseconds fromNow) { m_deadline = (Clock::now() + fromNow).time_since_epoch().count(); }
void Session::clearDeadline() { m_deadline = never; }

Session::Awaitable<void> Session::run()
{
    bool isClean = false;
    try {
        co_await m_stream.handshake();
        while (co_await serveRequest()) {
            m_stream.releaseBuffers();
            if (m_input.empty())
                m_input.shrink_to_fit();
        }
        isClean = !m_isBroken;
    } catch (const boost::system::system_error &) {
        // The connection has broken, which is the client's affair.
    } catch (const std::exception &error) {
        logLine("连接 " + m_address + " 出错：" + error.what());
    }
    if (isClean) {
        try {
            co_await closeGracefully();
        } catch (const boost::system::system_error &) {
        }
    }
    clearDeadline();
    boost::system::error_code ignored;
    m_stream.socket().close(ignored);
}

/// False when the connection is to be closed.
Session::Awaitable<bool> Session::serveRequest()
{
    RequestReader reader(m_service.configuration().headerBytes, largestBody);
    if (!co_await receive(reader))
        co_return false;
    if (reader.state() != RequestReader::State::Done)
        co_return co_await respond(failureOf(m_isExpired ? 408 : reader.failure()), false);
    clearDeadline();
    m_isBusy = true;
    const Request request = reader.request();
    bool stays = false;
    if (request.path == "/v1/query" && request.method == "POST")
        stays = co_await runQuery(request);
    else
        stays = co_await respond(co_await answerTo(request), request.keepAlive && mayStay(), request.method != "HEAD");
    m_isBusy = false;
    co_return stays &&mayStay();
}

/// False when the client ended, or sent nothing for too long.
Session::Awaitable<bool> Session::receive(RequestReader &reader)
{
    using State = RequestReader::State;
    const Configuration &configuration = m_service.configuration();
    m_isIdle = m_input.empty();
    setDeadline(m_isIdle ? configuration.idleTime : configuration.headerTime);
    bool isAtEnd = false;
    while (true) {
        if (!m_input.empty()) {
            if (m_isIdle)
                setDeadline(configuration.headerTime);
            m_isIdle = false;
            const State before = reader.state();
            m_input.erase(0, reader.put(m_input));
            if (reader.state() == State::Done || reader.state() == State::Failed)
                co_return true;
            if (before == State::Header && reader.state() == State::Body) {
                setDeadline(configuration.bodyTime);
                if (reader.expectsContinue())
                    m_stream.add("HTTP/1.1 100 Continue\r\n\r\n");
            }
        }
        try {
            isAtEnd = co_await m_stream.read(m_input) == TlsStream::Arrival::End;
        } catch (const boost::system::system_error &) {
            // At the end of its time a request that has begun gets an answer.
            if (!m_isExpired || m_isIdle)
                throw;
            isAtEnd = false;
        }
        if (isAtEnd || m_isExpired)
            co_return m_isExpired;
    }
}

Session::Awaitable<bool> Session::respond(const Response &response, bool keepAlive, bool withBody)
{
    m_service.metrics().countRequest(response.status);
    m_stream.add(responseText(response, keepAlive, withBody));
    co_await flush();
    co_return keepAlive;
}

Session::Awaitable<Response> Session::answerTo(const Request &request)
{
    const auto answered = std::make_shared<std::optional<Response>>();
    m_service.answer(request, m_service.clientAddress(request, m_address), [self = shared_from_this(), answered](Response response) {
        asio::dispatch(self->m_stream.socket().get_executor(), [self, answered, response = std::move(response)]() mutable {
            *answered = std::move(response);
            self->wake();
        });
    });
    while (!*answered)
        co_await sleep();
    co_return std::move(**answered);
}

Session::Awaitable<bool> Session::runQuery(const Request &request)
{
    const bool keepAlive = request.keepAlive && mayStay();
    m_queryAddress = m_service.clientAddress(request, m_address);
    auto begun = m_service.beginQuery(request, [weak = weak_from_this()] {
        if (const auto self = weak.lock())
            self->post(&Session::wake);
    });
    if (const auto *refusal = std::get_if<Response>(&begun))
        co_return co_await respond(*refusal, keepAlive);
    m_statement = std::get<std::shared_ptr<Statement>>(begun);
    const bool isSent = co_await sendResult(*m_statement, keepAlive);
    m_isWatching = false;
    m_statement.reset();
    co_return isSent &&keepAlive;
}

/// Sends the result as it comes, and sees to the statement's end. True when the client has got a complete answer.
Session::Awaitable<bool> Session::sendResult(Statement &statement, bool keepAlive)
{
    bool hasBegun = false;
    while (true) {
        const ResultQueue::Portion portion = statement.take();
        if (!m_isBroken && (portion.isLast || !portion.pieces.empty())) {
            try {
                co_await sendPortion(portion, keepAlive, hasBegun);
            } catch (const boost::system::system_error &) {
                m_isBroken = true;
            }
        }
        if (portion.isLast) {
            m_service.endQuery(statement, m_queryAddress, std::string(nameOf(m_isBroken ? brokenOutcome(portion) : portion.outcome)));
            co_return !m_isBroken;
        }
        if (m_isBroken)
            statement.abandon();
        if (portion.pieces.empty())
            co_await sleep();
    }
}

/// A result of which a part has been sent when it fails is broken off, so that nobody takes the part for the whole.
Session::Awaitable<void> Session::sendPortion(const ResultQueue::Portion &portion, bool keepAlive, bool &hasBegun)
{
    const bool isComplete = portion.isLast && portion.outcome == Outcome::Complete;
    if (portion.isLast && !isComplete) {
        m_isBroken = hasBegun;
        if (!hasBegun)
            co_await respond(responseTo(portion.outcome, portion.message), keepAlive);
        co_return;
    }
    const bool isWhole = portion.isLast && !hasBegun;
    std::size_t size = 0;
    for (const std::string &piece : portion.pieces)
        size += piece.size();
    if (!hasBegun) {
        m_service.metrics().countRequest(200);
        m_stream.add(responseHead(200, contentType(m_statement->request().format), keepAlive)
            + (isWhole ? "Content-Length: " + std::to_string(size) + "\r\n\r\n" : "Transfer-Encoding: chunked\r\n\r\n"));
        hasBegun = true;
    }
    if (!isWhole && size > 0)
        m_stream.add(chunkHead(size));
    co_await sendPieces(portion.pieces);
    if (!isWhole)
        m_stream.add(std::string_view("\r\n0\r\n\r\n").substr(size > 0 ? 0 : 2, isComplete ? std::string_view::npos : 2));
    co_await flush();
}

/// Encrypts and sends some of it at a time; the client has to take each part in time.
Session::Awaitable<void> Session::sendPieces(const std::vector<std::string> &pieces)
{
    std::size_t waiting = 0;
    for (const std::string &piece : pieces) {
        for (std::size_t begin = 0; begin < piece.size(); begin += sendSize) {
            const auto part = std::string_view(piece).substr(begin, sendSize);
            m_stream.add(part);
            if ((waiting += part.size()) < sendSize)
                continue;
            waiting = 0;
            co_await flush();
        }
    }
}

Session::Awaitable<void> Session::flush()
{
    setDeadline(m_service.configuration().writeTime);
    co_await m_stream.flush();
    clearDeadline();
}

/// Says goodbye and takes what is still on its way, as otherwise the system would throw away the last answer with the connection.
Session::Awaitable<void> Session::closeGracefully()
{
    setDeadline(farewellTime);
    co_await m_stream.finish();
    std::size_t discarded = 0;
    m_input.clear();
    while (discarded < mostDiscarded && co_await m_stream.read(m_input) == TlsStream::Arrival::Bytes) {
        discarded += m_input.size();
        m_input.clear();
    }
}

void Session::beginWatching()
{
    if (!m_statement || m_isWatching)
        return;
    m_isWatching = true;
    readAhead();
}

/// Reads on while a statement runs: what arrives are further requests, or the client's end, which cancels the statement.
void Session::watch()
{
    if (m_watchPending || m_input.size() >= mostReadAhead)
        return;
    m_watchPending = true;
    m_stream.socket().async_wait(TlsStream::Socket::wait_read, [self = shared_from_this()](const boost::system::error_code &error) {
        self->m_watchPending = false;
        if (!error && self->m_isWatching)
            self->readAhead();
    });
}

void Session::readAhead()
{
    try {
        auto arrival = TlsStream::Arrival::Bytes;
        while (arrival == TlsStream::Arrival::Bytes && m_input.size() < mostReadAhead)
            arrival = m_stream.readArrived(m_input);
        if (arrival != TlsStream::Arrival::End)
            return watch();
    } catch (const boost::system::system_error &) {
    }
    m_isBroken = true;
    wake();
    if (m_statement)
        m_statement->abandon();
}

Session::Awaitable<void> Session::sleep()
{
    while (!m_isWoken) {
        boost::system::error_code ignored;
        co_await m_alarm.async_wait(asio::redirect_error(asio::use_awaitable, ignored));
    }
    m_isWoken = false;
}

void Session::wake()
{
    m_isWoken = true;
    m_alarm.cancel();
}

} // namespace server
