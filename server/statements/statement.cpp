#include "server/statements/statement.h"

#include <new>

namespace server {

namespace {

constexpr auto graceTime = std::chrono::milliseconds(500); ///< for a statement to end by itself at its deadline

Outcome outcomeOf(engine::Failure failure)
{
    switch (failure) {
    case engine::Failure::Refused:
        return Outcome::Refused;
    case engine::Failure::Database:
        return Outcome::Failed;
    case engine::Failure::Cancelled:
        return Outcome::Cancelled;
    case engine::Failure::TimeLimit:
        return Outcome::TimeLimit;
    case engine::Failure::Unavailable:
        return Outcome::Unavailable;
    }
    return Outcome::Failed;
}

} // namespace

/// Counts the rows on their way.
class Statement::CountingSink : public packet::BlockSink {
public:
    CountingSink(packet::BlockSink &sink, std::atomic<std::int64_t> &rows)
        : m_sink(sink)
        , m_rows(rows)
    {
    }
    void begin(const std::vector<packet::Field> &schema) override { m_sink.begin(schema); }
    void block(const packet::Block &block, std::span<const packet::Dictionary *const> dictionaries) override
    {
        m_sink.block(block, dictionaries);
        m_rows += block.rows;
    }
    void end(bool truncated) override { m_sink.end(truncated); }

private:
    packet::BlockSink &m_sink;
    std::atomic<std::int64_t> &m_rows;
};

Statement::Statement(Database &database, StatementRequest request, std::function<void()> wake)
    : m_database(database)
    , m_request(std::move(request))
    , m_deadline(m_begun + m_database.configuration().statementTime)
    , m_queue(m_database.configuration().sendBuffer, std::move(wake))
{
}

void Statement::submit()
{
    m_ticket = m_database.pool().submit(m_request.user, [self = shared_from_this()] { self->run(); });
    if (!m_ticket)
        m_queue.finish(Outcome::Busy, "正在运行的查询太多，请稍候再查");
}

void Statement::abandon()
{
    m_stop.request_stop();
    if (m_ticket && m_database.pool().withdraw(m_request.user, m_ticket))
        m_queue.finish(Outcome::Cancelled, "查询已取消");
}

void Statement::endByOperator() { end(Outcome::Ended, "管理员结束了这条查询，请缩小查询范围，或与管理员联系"); }

/// Whatever the worker does with it from now on comes too late.
void Statement::end(Outcome outcome, const std::string &message)
{
    m_database.pool().withdraw(m_request.user, m_ticket);
    m_queue.finish(outcome, message);
    m_stop.request_stop();
}

void Statement::check(Clock::time_point now)
{
    if (!m_ticket)
        return;
    if (m_request.mayGoOn && !m_request.mayGoOn())
        return end(Outcome::Revoked, "帐户或密码刚刚更改，查询已停止，请重新登录");
    m_database.pool().look(m_ticket, now);
    if (now < m_deadline)
        return;
    if (m_database.pool().withdraw(m_request.user, m_ticket))
        return m_queue.finish(Outcome::TimeLimit, "查询排队的时间超过了规定的时间，请稍候再查");
    if (now < m_deadline + graceTime)
        return;
    end(Outcome::TimeLimit, "查询超过了规定的时间，请缩小查询范围");
}

void Statement::run()
{
    m_isWaiting = false;
    try {
        if (m_request.beforeRunning)
            m_request.beforeRunning();
        stream();
        m_queue.finish(Outcome::Complete);
    } catch (const engine::Error &error) {
        if (error.failure() == engine::Failure::Unavailable)
            m_queue.finish(Outcome::Unavailable, m_database.unavailableMessage());
        else
            m_queue.finish(outcomeOf(error.failure()), error.what());
    } catch (const ResultTooLarge &error) {
        m_queue.finish(Outcome::TooLarge, error.what());
    } catch (const std::bad_alloc &) {
        m_queue.finish(Outcome::TooLarge, "服务器内存不足，请缩小查询范围");
    } catch (const std::exception &error) {
        m_queue.finish(Outcome::Failed, error.what());
    }
}

void Statement::stream()
{
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(m_deadline - Clock::now());
    if (left.count() <= 0)
        throw engine::Error(engine::Failure::TimeLimit, "查询排队的时间超过了规定的时间，请稍候再查");
    const auto sink = makeSink(m_request.format, m_request.compression, [this](std::span<const std::byte> bytes) { takeBytes(bytes); });
    CountingSink counting(*sink, m_rows);
    m_database.run([&](engine::Engine &engine) {
        engine.stream(m_request.sql, counting,
            { .stop = m_stop.get_token(),
                .timeLimit = left,
                .memoryLimit = m_database.configuration().statementMemory,
                .rowLimit = m_database.configuration().rows,
                .reader = m_request.reader });
    });
}

void Statement::takeBytes(std::span<const std::byte> bytes)
{
    if ((m_bytes += bytes.size()) > m_database.configuration().resultBytes)
        throw ResultTooLarge("结果超过了服务器允许的大小，请缩小查询范围");
    m_queue.push(bytes, m_stop.get_token(), m_deadline);
}

} // namespace server
