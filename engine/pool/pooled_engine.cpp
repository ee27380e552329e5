#include "engine/pool/pooled_engine.h"

#include <algorithm>
#include <memory>

namespace engine {

namespace {

Clock::time_point deadlineIn(std::chrono::milliseconds limit)
{
    const auto now = Clock::now();
    return limit < Clock::time_point::max() - now ? now + limit : Clock::time_point::max();
}

} // namespace

/// Gives its connection back to the pool, whatever happens.
class PooledEngine::Lease {
public:
    Lease(PooledEngine &engine, const std::stop_token &stop, Clock::time_point deadline)
        : m_engine(engine)
        , m_connection(engine.acquire(stop, deadline))
    {
    }
    Lease(const Lease &) = delete;
    ~Lease() { m_engine.release(std::move(m_connection)); }
    Connection *operator->() const { return m_connection.get(); }

private:
    PooledEngine &m_engine;
    std::unique_ptr<Connection> m_connection;
};

PooledEngine::PooledEngine(Opener open, const EngineOptions &options)
    : m_open(std::move(open))
    , m_limit(std::max<std::size_t>(options.connections, 1))
{
    auto first = m_open();
    m_schema = first->readTables(options.tables);
    first->restrictTo(m_schema);
    m_idle.push_back(std::move(first));
}

packet::PacketPtr PooledEngine::run(std::string_view sql, const QueryOptions &options, packet::BlockSink *sink)
{
    const auto annotations = gate::check(sql, m_schema);
    const auto deadline = deadlineIn(options.timeLimit);
    const Lease connection(*this, options.stop, deadline);
    return connection->run({ connection->textFor(sql, annotations, options.rowLimit), options, deadline, sink });
}

std::unique_ptr<Connection> PooledEngine::acquire(const std::stop_token &stop, Clock::time_point deadline)
{
    std::unique_lock lock(m_mutex);
    const auto free = [this] { return m_busy < m_limit; };
    if (!m_released.wait_until(lock, stop, deadline, free)) {
        if (stop.stop_requested())
            throw Error(Failure::Cancelled, "查询已取消");
        throw Error(Failure::TimeLimit, "等待空闲的数据库连接超过了规定的时间，请稍后再试");
    }
    ++m_busy;
    if (!m_idle.empty()) {
        auto connection = std::move(m_idle.back());
        m_idle.pop_back();
        return connection;
    }
    lock.unlock();
    try {
        return openAnother();
    } catch (...) {
        release(nullptr);
        throw;
    }
}

std::unique_ptr<Connection> PooledEngine::openAnother()
{
    auto connection = m_open();
    connection->restrictTo(m_schema);
    return connection;
}

void PooledEngine::release(std::unique_ptr<Connection> connection)
{
    {
        const std::lock_guard lock(m_mutex);
        --m_busy;
        if (connection && connection->isUsable())
            m_idle.push_back(std::move(connection));
    }
    m_released.notify_one();
}

} // namespace engine
