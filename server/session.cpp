#include "server/session.h"

#include "server/base/address.h"
#include "server/base/log.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/use_awaitable.hpp>

#include <algorithm>
#include <limits>
#include <utility>

namespace server {

namespace asio = boost::asio;

namespace {

constexpr std::size_t largestBody = 66 * 1024; ///< the longest statement and a little, so that the gate can say what is wrong
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
    case 501:
        return errorResponse(501, "coding", "请求内容只能用 chunked 传输编码，请检查客户端和代理的设置");
    case 505:
        return errorResponse(505, "version", "只支持 HTTP/1.1 和 HTTP/1.0，请检查客户端和代理的设置");
    default:
        return errorResponse(400, "request", "请求不是正确的 HTTP/1.1，请检查客户端");
    }
}

} // namespace

Session::Session(TlsStream::Socket socket, std::shared_ptr<SSL_CTX> context, Service &service, std::string address)
    : m_service(service)
    , m_context(std::move(context))
    , m_address(std::move(address))
    , m_addressGroup(server::addressGroup(m_address))
    , m_stream(std::move(socket), *m_context)
    , m_deadline(never)
{
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
    if (isBusy())
        post(&Session::lookAfterStatement);
}

void Session::closeIfIdle() { post(&Session::doCloseIfIdle); }
void Session::giveWay()
{
    m_givesWay = true;
    post(&Session::doGiveWay);
}
void Session::cancel() { post(&Session::cancelNow); }

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
    if (m_state != State::Idle)
        return;
    boost::system::error_code ignored;
    m_stream.socket().cancel(ignored);
}

void Session::doGiveWay()
{
    boost::system::error_code ignored;
    if (!isBusy())
        m_stream.socket().cancel(ignored);
}

void Session::endAtOnce()
{
    cancelNow();
    m_resume = nullptr;
}

void Session::cancelNow()
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
        isClean = m_state != State::Broken;
        m_state = State::Closing;
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
        co_return co_await respond(failureOf(m_isExpired ? 408 : reader.failure()), After::Close);
    clearDeadline();
    m_state = State::Answering;
    const Request &request = reader.request();
    bool stays = false;
    if (Service::isQuery(request)) {
        stays = co_await runQuery(request);
    } else {
        const Response answer = co_await answerTo(request);
        stays = co_await respond(answer, afterAnswerTo(request), request.method == "HEAD" ? Content::HeadOnly : Content::Whole);
    }
    co_return (stays && mayStay());
}

/// False when the client ended, or sent nothing for too long.
Session::Awaitable<bool> Session::receive(RequestReader &reader)
{
    using Progress = RequestReader::State;
    const Configuration &configuration = m_service.configuration();
    m_state = m_input.empty() ? State::Idle : State::Receiving;
    const auto idleTime = m_isKnown ? configuration.idleTime : std::min(configuration.idleTime, configuration.strangerTime);
    setDeadline(m_state == State::Idle ? idleTime : configuration.headerTime);
    bool isAtEnd = false;
    while (true) {
        if (!m_input.empty()) {
            if (m_state == State::Idle)
                setDeadline(configuration.headerTime);
            m_state = State::Receiving;
            const Progress before = reader.state();
            m_input.erase(0, reader.put(m_input));
            if (reader.state() == Progress::Done || reader.state() == Progress::Failed)
                co_return true;
            if (before == Progress::Header && reader.state() == Progress::Body) {
                setDeadline(configuration.bodyTime);
                if (reader.expectsContinue())
                    m_stream.add("HTTP/1.1 100 Continue\r\n\r\n");
            }
        }
        try {
            isAtEnd = co_await m_stream.read(m_input) == TlsStream::Arrival::End;
        } catch (const boost::system::system_error &) {
            // At the end of its time a request that has begun gets an answer.
            if (!m_isExpired || m_state == State::Idle)
                throw;
            isAtEnd = false;
        }
        if (isAtEnd || m_isExpired)
            co_return m_isExpired;
    }
}

Session::Awaitable<bool> Session::respond(const Response &response, After after, Content content)
{
    m_service.metrics().countRequest(response.status);
    m_stream.add(responseText(response, after, content));
    co_await flush();
    co_return after == After::KeepAlive;
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
    // Everything below this path is for those alone whose user is known.
    if ((*answered)->status == 200 && request.path.starts_with("/v1/"))
        m_isKnown = true;
    co_return std::move(**answered);
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

Session::Awaitable<void> Session::sleep()
{
    const auto keep
        = [this](auto handler) { m_resume = [kept = std::make_shared<decltype(handler)>(std::move(handler))] { std::move (*kept)(); }; };
    if (!m_isWoken)
        co_await asio::async_initiate<const asio::use_awaitable_t<> &, void()>(keep, asio::use_awaitable);
    m_isWoken = false;
}

void Session::wake()
{
    m_isWoken = true;
    if (const auto resume = std::exchange(m_resume, nullptr))
        resume();
}

} // namespace server
