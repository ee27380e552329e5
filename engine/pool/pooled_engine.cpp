#include "engine/pool/pooled_engine.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>

namespace engine {

namespace {

Clock::time_point deadlineIn(std::chrono::milliseconds limit)
{
    const auto now = Clock::now();
    return limit < Clock::time_point::max() - now ? now + limit : Clock::time_point::max();
}

constexpr auto lagLimit = std::chrono::seconds(2);
constexpr auto ruleLimit = std::chrono::seconds(20); ///< for a database to look at a rule

/// Knows whether rows have come.
class WatchedSink : public packet::BlockSink {
public:
    explicit WatchedSink(packet::BlockSink &sink)
        : m_sink(sink)
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
    }
    void end(bool truncated) override { m_sink.end(truncated); }

private:
    packet::BlockSink &m_sink;
    bool m_hasBegun = false;
};

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
    std::copy_if(m_schema.begin(), m_schema.end(), std::inserter(m_lookups, m_lookups.end()),
        [&](const auto &table) { return !options.lookups.empty() && isWanted(table.first, options.lookups); });
    readRules(*first, options);
    if (first->isUsable())
        m_idle.push_back(std::move(first));
}

/// Lets the database read every rule once, with its hidden columns, whose types are needed.
void PooledEngine::readRules(Connection &connection, const EngineOptions &options)
{
    m_rules = gate::RowRules(options.rules, m_schema);
    const QueryOptions quick { .timeLimit = ruleLimit };
    const Reader nobody({ "-" }, "-", "-");
    const gate::Reading reading(m_rules, nobody);
    for (std::size_t number = 0; number < m_rules.size(); ++number) {
        const gate::RowRule &rule = m_rules[number];
        std::string sql = "select ";
        for (const std::string &column : rule.hidden)
            sql += column + ",";
        sql += "1 as one from " + rule.table + " where 1=0";
        try {
            const auto annotations = gate::check(sql, m_schema, &reading);
            const auto packet = connection.run(
                { connection.textFor(sql, annotations, quick.rowLimit, &reading), quick, deadlineIn(quick.timeLimit), nullptr });
            std::vector<bool> areTexts;
            for (std::size_t column = 0; column < rule.hidden.size(); ++column)
                areTexts.push_back(packet->schema()[column].type == packet::ColumnType::Text);
            m_rules.hide(number, areTexts, m_schema);
        } catch (const Error &error) {
            if (error.failure() == Failure::Unavailable)
                throw;
            throw Error(Failure::Unavailable, "表 " + rule.table + " 的行规则不能用：" + error.what() + "；请改正配置后重新启动");
        }
    }
}

/// While all connections run something, the answer can wait.
bool PooledEngine::isReplaced()
{
    const std::lock_guard lock(m_mutex);
    return !m_idle.empty() && m_idle.back()->isReplaced();
}

/// The gate itself says so, as if there were no other tables.
bool PooledEngine::readsLookupsOnly(std::string_view sql) const
try {
    if (m_lookups.empty())
        return false;
    gate::check(sql, m_lookups);
    return true;
} catch (const Error &) {
    return false;
}

std::chrono::milliseconds PooledEngine::lag()
{
    const QueryOptions quick { .timeLimit = lagLimit };
    const auto deadline = deadlineIn(lagLimit);
    const Lease connection(*this, quick.stop, deadline);
    const std::string question = connection->lagQuestion();
    if (question.empty())
        return {};
    return std::chrono::milliseconds(connection->run({ question, quick, deadline, nullptr })->integer(0, 0));
}

packet::PacketPtr PooledEngine::run(std::string_view sql, const QueryOptions &options, packet::BlockSink *sink)
{
    if (options.reader && !m_rules.empty())
        return runRuled(sql, gate::Reading(m_rules, *options.reader), options, sink);
    return runChecked({ sql, gate::check(sql, m_schema), nullptr }, options, deadlineIn(options.timeLimit), sink);
}

/// What fails may have failed on a row that is not the reader's, and the database's words, or that it failed at all, would tell of it.
/// So it runs again without these rows, and what comes of that is told.
packet::PacketPtr PooledEngine::runRuled(std::string_view sql, gate::Reading reading, const QueryOptions &options, packet::BlockSink *sink)
{
    const Checked statement { sql, gate::check(sql, m_schema, &reading), &reading };
    const auto deadline = deadlineIn(options.timeLimit);
    std::optional<WatchedSink> watched;
    if (sink)
        sink = &watched.emplace(*sink);
    try {
        return runChecked(statement, options, deadline, sink);
    } catch (const Error &error) {
        const bool isRuled = std::any_of(statement.annotations.begin(), statement.annotations.end(),
            [](const gate::Annotation &annotation) { return annotation.construct == gate::Construct::RuledTable; });
        if (error.failure() != Failure::Database || !isRuled)
            throw;
        if (watched && watched->hasBegun())
            throw Error(Failure::Database, "查询中途出错，已取到的行不完整；请缩小范围或检查语句中的换算和除法");
    }
    reading.order = gate::RuleOrder::First;
    return runChecked(statement, options, deadline, sink);
}

packet::PacketPtr PooledEngine::runChecked(
    const Checked &statement, const QueryOptions &options, Clock::time_point deadline, packet::BlockSink *sink)
{
    const Lease connection(*this, options.stop, deadline);
    const auto &[sql, annotations, reading] = statement;
    return connection->run({ connection->textFor(sql, annotations, options.rowLimit, reading), options, deadline, sink });
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
