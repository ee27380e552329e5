// The part of a session that sends the result of a statement while it runs.

#include "server/session.h"

#include <boost/asio/use_awaitable.hpp>

#include <cstdio>
#include <memory>

namespace server {

namespace {

constexpr std::size_t sendSize = 256 * 1024;
constexpr std::size_t mostReadAhead = 16 * 1024; ///< of the requests that follow

/// What the log says of a result that the client did not get.
Outcome brokenOutcome(const ResultQueue::Portion &last) { return last.outcome == Outcome::Complete ? Outcome::Cancelled : last.outcome; }

std::string chunkHead(std::size_t size)
{
    char head[24];
    return std::string(head, std::size_t(std::snprintf(head, sizeof head, "%zx\r\n", size)));
}

} // namespace

Session::Awaitable<bool> Session::runQuery(const Request &request)
{
    const After after = afterAnswerTo(request);
    m_queryAddress = m_service.clientAddress(request, m_address);
    auto begun = m_service.beginQuery(request, m_queryAddress, [weak = weak_from_this()] {
        if (const auto self = weak.lock())
            self->post(&Session::wake);
    });
    if (const auto *refusal = std::get_if<Response>(&begun))
        co_return co_await respond(*refusal, after);
    m_isKnown = true;
    m_statement = std::get<std::shared_ptr<Statement>>(begun);
    const bool isSent = co_await sendResult(*m_statement, after);
    m_statement.reset();
    co_return (isSent && after == After::KeepAlive);
}

/// Sends the result as it comes, and sees to the statement's end. True when the client has got a complete answer.
Session::Awaitable<bool> Session::sendResult(Statement &statement, After after)
{
    bool hasBegun = false;
    while (true) {
        const ResultQueue::Portion portion = statement.take();
        bool isSent = false; // whole: a client may be gone before that is told
        if (m_state != State::Broken && (portion.isLast || !portion.pieces.empty())) {
            try {
                co_await sendPortion(portion, after, hasBegun);
                isSent = portion.isLast;
            } catch (const boost::system::system_error &) {
                m_state = State::Broken;
            }
        }
        if (portion.isLast) {
            const bool isBroken = m_state == State::Broken;
            const Outcome outcome = isBroken && !isSent ? brokenOutcome(portion) : portion.outcome;
            m_service.endQuery(statement, m_queryAddress, std::string(nameOf(outcome)));
            co_return !isBroken;
        }
        if (m_state == State::Broken)
            statement.abandon();
        if (portion.pieces.empty())
            co_await sleep();
    }
}

/// A result of which a part has been sent when it fails is broken off, so that nobody takes the part for the whole.
Session::Awaitable<void> Session::sendPortion(const ResultQueue::Portion &portion, After after, bool &hasBegun)
{
    const bool isComplete = portion.isLast && portion.outcome == Outcome::Complete;
    if (portion.isLast && !isComplete) {
        if (hasBegun)
            m_state = State::Broken;
        else
            co_await respond(responseTo(portion.outcome, portion.message), after);
        co_return;
    }
    const bool isWhole = portion.isLast && !hasBegun;
    std::size_t size = 0;
    for (const ResultQueue::Piece &piece : portion.pieces)
        size += piece->size();
    if (!hasBegun) {
        m_service.metrics().countRequest(200);
        m_stream.add(responseHead(200, contentType(m_statement->request().format), after)
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
Session::Awaitable<void> Session::sendPieces(const std::vector<ResultQueue::Piece> &pieces)
{
    std::size_t waiting = 0;
    for (const ResultQueue::Piece &piece : pieces) {
        for (std::size_t begin = 0; begin < piece->size(); begin += sendSize) {
            const auto part = std::string_view(*piece).substr(begin, sendSize);
            m_stream.add(part);
            if ((waiting += part.size()) < sendSize)
                continue;
            waiting = 0;
            co_await flush();
        }
    }
}

void Session::lookAfterStatement()
{
    if (!m_statement)
        return;
    m_statement->check(Clock::now());
    if (m_state != State::Answering)
        return;
    m_state = State::Watching;
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
        if (!error && self->m_statement && self->m_state == State::Watching)
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
    m_state = State::Broken;
    if (m_statement)
        m_statement->abandon();
    wake();
}

} // namespace server
