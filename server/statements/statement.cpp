#include "server/statements/statement.h"

#include <new>
#include <utility>

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
    bool hasBegun() const { return m_hasBegun; }
    void begin(const std::vector<packet::Field> &schema) override
    {
        m_hasBegun = true;
        m_sink.begin(schema);
    }
    void block(const packet::Block &block, std::span<const packet::Dictionary *const> dictionaries) override
    {
        m_sink.block(block, dictionaries);
        m_rows += block.rows;
    }
    void end(bool truncated) override { m_sink.end(truncated); }

private:
    packet::BlockSink &m_sink;
    std::atomic<std::int64_t> &m_rows;
    bool m_hasBegun = false;
};

Statement::Statement(Database &database, StatementRequest request, std::function<void()> wake)
    : m_database(database)
    , m_request(std::move(request))
    , m_deadline(m_begun + m_database.configuration().statementTime)
    , m_wake(std::move(wake))
    , m_queue(m_database.configuration().sendBuffer, m_wake)
{
}

/// Two statements with the same get the same bytes.
std::string Statement::question() const
{
    const engine::Reader *const reader = m_database.configuration().rules.empty() ? nullptr : m_request.reader.get();
    std::string text = std::to_string(int(m_request.format)) + std::to_string(int(m_request.compression)) + (reader ? 'r' : 'a');
    // With its size, so that no two readers look the same put together.
    const auto add = [&text](std::string_view part) { text.append(std::to_string(part.size())).append(1, ':').append(part); };
    if (reader) {
        add(reader->site());
        add(reader->employee());
        for (const std::string &sites : reader->sites())
            add(sites);
    }
    return text + '\n' + m_request.sql;
}

void Statement::submit()
{
    SharedResults &shared = m_database.sharedResults();
    if (shared.isOn()) {
        m_lead = shared.join(question(), [weak = weak_from_this()](SharedResults::News news, const SharedResults::ResultPtr &result) {
            if (const auto self = weak.lock())
                self->hear(news, result);
        });
    }
    m_follows = shared.isOn() && !m_lead;
    if (!m_follows)
        queue();
}

/// What it waited for, on a thread of that one.
void Statement::hear(SharedResults::News news, const SharedResults::ResultPtr &result)
{
    if (news != SharedResults::News::Result) {
        m_news = news;
        return m_wake();
    }
    m_rows = result->rows;
    m_bytes = result->bytes;
    m_queue.give(result->pieces);
    m_queue.finish(result->outcome, result->message);
}

ResultQueue::Portion Statement::take()
{
    const SharedResults::News news = m_news.exchange(SharedResults::News::Result);
    if (news != SharedResults::News::Result && !m_stop.stop_requested()) {
        m_follows = false;
        news == SharedResults::News::RunAgain ? submit() : queue();
    }
    return m_queue.take();
}

void Statement::queue()
{
    m_ticket = m_database.pool().submit(m_request.user, [self = shared_from_this()] { self->run(); });
    if (m_ticket)
        return;
    m_lead.reset();
    m_queue.finish(Outcome::Busy, "正在运行的查询太多，请稍候再查");
}

/// True when it had not begun and never will; whoever waits for it then goes on without it.
bool Statement::withdraw()
{
    if (m_follows)
        return true;
    if (!m_ticket || !m_database.pool().withdraw(m_request.user, m_ticket))
        return false;
    m_lead.reset();
    return true;
}

void Statement::abandon()
{
    m_stop.request_stop();
    if (withdraw())
        m_queue.finish(Outcome::Cancelled, "查询已取消");
}

void Statement::endByOperator() { end(Outcome::Ended, "管理员结束了这条查询，请缩小查询范围，或与管理员联系"); }

/// Whatever the worker does with it from now on comes too late.
void Statement::end(Outcome outcome, const std::string &message)
{
    withdraw();
    m_queue.finish(outcome, message);
    m_stop.request_stop();
}

void Statement::check(Clock::time_point now)
{
    if (!m_ticket && !m_follows)
        return;
    if (m_request.mayGoOn && !m_request.mayGoOn())
        return end(Outcome::Revoked, "帐户或密码刚刚更改，查询已停止，请重新登录");
    if (m_ticket)
        m_database.pool().look(m_ticket, now);
    if (now < m_deadline)
        return;
    if (withdraw())
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
        finish(Outcome::Complete);
    } catch (const engine::Error &error) {
        if (error.failure() == engine::Failure::Unavailable)
            finish(Outcome::Unavailable, m_database.unavailableMessage());
        else
            finish(outcomeOf(error.failure()), error.what());
    } catch (const ResultTooLarge &error) {
        finish(Outcome::TooLarge, error.what());
    } catch (const std::bad_alloc &) {
        finish(Outcome::TooLarge, "服务器内存不足，请缩小查询范围");
    } catch (const std::exception &error) {
        finish(Outcome::Failed, error.what());
    }
}

/// Tells the client, and whoever waits for the same, of an end that would be theirs too.
void Statement::finish(Outcome outcome, const std::string &message)
{
    m_queue.finish(outcome, message);
    const bool isShared = outcome == Outcome::Complete || outcome == Outcome::Refused || outcome == Outcome::Failed;
    if (m_lead && isShared) {
        const bool isComplete = outcome == Outcome::Complete;
        const auto result = std::make_shared<SharedResults::Result>(SharedResults::Result {
            .bytes = isComplete ? m_bytes.load() : 0, .rows = isComplete ? m_rows.load() : 0, .outcome = outcome, .message = message });
        if (isComplete)
            result->pieces = std::exchange(m_gathered, {});
        m_lead->answer(result, isComplete ? m_keep : SharedResults::Keep::No);
    }
    m_lead.reset();
    m_gathered = {};
}

void Statement::stream()
{
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(m_deadline - Clock::now());
    if (left.count() <= 0)
        throw engine::Error(engine::Failure::TimeLimit, "查询排队的时间超过了规定的时间，请稍候再查");
    const auto sink = makeSink(m_request.format, m_request.compression, [this](std::span<const std::byte> bytes) { takeBytes(bytes); });
    CountingSink counting(*sink, m_rows);
    m_database.run(
        [&](engine::Engine &engine) {
            engine.stream(m_request.sql, counting,
                { .stop = m_stop.get_token(),
                    .timeLimit = left,
                    .memoryLimit = m_database.configuration().statementMemory,
                    .rowLimit = m_database.configuration().rows,
                    .reader = m_request.reader });
            m_keep = SharedResults::Keep(m_lead && engine.readsLookupsOnly(m_request.sql));
        },
        [&] { return !counting.hasBegun(); });
}

void Statement::takeBytes(std::span<const std::byte> bytes)
{
    if ((m_bytes += bytes.size()) > m_database.configuration().resultBytes)
        throw ResultTooLarge("结果超过了服务器允许的大小，请缩小查询范围");
    const auto piece = std::make_shared<const std::string>(reinterpret_cast<const char *>(bytes.data()), bytes.size());
    // What is larger than the room of one client would make whoever waits wait for the slowest.
    if (m_lead && m_bytes > m_database.configuration().sendBuffer) {
        m_lead->giveUp();
        m_lead.reset();
        m_gathered = {};
    }
    if (m_lead)
        m_gathered.push_back(piece);
    m_queue.push(piece, m_stop.get_token(), m_deadline);
}

} // namespace server
