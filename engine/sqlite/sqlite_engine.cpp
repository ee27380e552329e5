#include "engine/sqlite/sqlite_engine.h"

#include "engine/dialect.h"

#include <algorithm>

namespace engine {

namespace {

SqliteConnection::Clock::time_point deadlineIn(std::chrono::milliseconds limit)
{
    using Clock = SqliteConnection::Clock;
    const auto now = Clock::now();
    return limit < Clock::time_point::max() - now ? now + limit : Clock::time_point::max();
}

} // namespace

/// Gives its connection back to the pool, whatever happens.
class SqliteEngine::Lease {
public:
    Lease(SqliteEngine &engine, const std::stop_token &stop, Clock::time_point deadline)
        : m_engine(engine)
        , m_connection(engine.acquire(stop, deadline))
    {
    }
    Lease(const Lease &) = delete;
    ~Lease() { m_engine.release(std::move(m_connection)); }
    SqliteConnection *operator->() const { return m_connection.get(); }

private:
    SqliteEngine &m_engine;
    std::unique_ptr<SqliteConnection> m_connection;
};

SqliteEngine::SqliteEngine(const std::string &path, const EngineOptions &options)
    : m_path(path)
    , m_limit(std::max<std::size_t>(options.connections, 1))
{
    auto first = std::make_unique<SqliteConnection>(path);
    m_tables = first->readTables();
    if (!options.tables.empty()) {
        m_tables.clear();
        for (const std::string &table : options.tables)
            m_tables.insert(gate::upperCase(table));
    }
    first->restrictTo(m_tables);
    m_idle.push_back(std::move(first));
}

packet::PacketPtr SqliteEngine::run(std::string_view sql, const QueryOptions &options, packet::BlockSink *sink)
{
    const std::string text = sqliteText(sql, gate::check(sql, m_tables));
    const auto deadline = deadlineIn(options.timeLimit);
    return Lease(*this, options.stop, deadline)->run(text, options, deadline, sink);
}

std::unique_ptr<SqliteConnection> SqliteEngine::acquire(const std::stop_token &stop, Clock::time_point deadline)
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
        return open();
    } catch (...) {
        release(nullptr);
        throw;
    }
}

std::unique_ptr<SqliteConnection> SqliteEngine::open()
{
    auto connection = std::make_unique<SqliteConnection>(m_path);
    connection->restrictTo(m_tables);
    return connection;
}

void SqliteEngine::release(std::unique_ptr<SqliteConnection> connection)
{
    {
        const std::lock_guard lock(m_mutex);
        --m_busy;
        if (connection)
            m_idle.push_back(std::move(connection));
    }
    m_released.notify_one();
}

} // namespace engine
