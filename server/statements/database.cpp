#include "server/statements/database.h"

#include "engine/pool/open_engine.h"
#include "server/base/log.h"

namespace server {

namespace {

constexpr auto askEvery = std::chrono::seconds(1);
constexpr auto readyLimit = std::chrono::seconds(2);
constexpr auto endingTime = std::chrono::seconds(1); ///< that a statement may take beyond its limit

/// Takes no rows but the first.
class NoRows : public packet::BlockSink {
public:
    void begin(const std::vector<packet::Field> &) override { }
    void block(const packet::Block &, std::span<const packet::Dictionary *const>) override { }
    void end(bool) override { }
};

void readOneRow(engine::Engine &engine)
{
    const std::string table = engine.anyTable();
    if (table.empty())
        throw engine::Error(engine::Failure::Unavailable, "其中没有可以查询的表；请检查数据库，以及配置中的 tables");
    NoRows sink;
    engine.stream("select 1 as ready from " + table, sink, { .timeLimit = readyLimit, .rowLimit = 1 });
}

} // namespace

Database::Database(const DatabaseConfiguration &configuration)
    : m_configuration(configuration)
    , m_sharedResults(configuration.sharedAge, configuration.keptBytes)
    , m_pool({ configuration.workers, configuration.queue, configuration.userStatements, configuration.userQueue })
{
}

std::shared_ptr<engine::Engine> Database::open()
{
    const std::lock_guard lock(m_openMutex);
    forgetReplaced();
    if (m_engine)
        return m_engine;
    if (Clock::now() - m_openTried < askEvery)
        throw engine::Error(engine::Failure::Unavailable, m_fault);
    m_openTried = Clock::now();
    m_engine = engine::openEngine(m_configuration.url,
        { m_configuration.connections(), m_configuration.tables, m_configuration.rules, m_configuration.lookupTables });
    m_fault.clear();
    return m_engine;
}

/// What runs on it goes on.
void Database::forgetReplaced()
{
    const auto now = Clock::now();
    if (!m_engine || now - m_lookedAt < askEvery)
        return;
    m_lookedAt = now;
    if (!m_engine->isReplaced())
        return;
    m_engine = nullptr;
    m_openTried = {};
    logLine("数据库“" + m_configuration.name + "”的文件换过了，重新打开");
}

void Database::run(const std::function<void(engine::Engine &)> &use)
{
    std::shared_ptr<engine::Engine> engine;
    try {
        engine = open();
        use(*engine);
    } catch (const engine::Error &error) {
        if (error.failure() == engine::Failure::Unavailable)
            giveUp(engine, error.what());
        throw;
    }
}

/// The next statement opens the database anew, as a file or a server that came back may be another one.
void Database::giveUp(const std::shared_ptr<engine::Engine> &engine, const std::string &reason)
{
    const std::lock_guard lock(m_openMutex);
    if (m_engine == engine)
        m_engine = nullptr;
    if (m_fault == reason)
        return;
    m_fault = reason;
    logLine("数据库“" + m_configuration.name + "”不能使用：" + reason);
}

std::string Database::unavailableMessage() const
{
    return "数据库“" + m_configuration.name + "”暂时不能使用，请稍候再试；仍然如此时请联系管理员";
}

bool Database::isReady()
{
    if (m_pool.heldFor() > m_configuration.statementTime + endingTime)
        return false;
    const std::lock_guard lock(m_readyMutex);
    if (m_readyAsked == Clock::time_point() || Clock::now() - m_readyAsked >= askEvery) {
        m_isReady = answers();
        m_readyAsked = Clock::now();
    }
    return m_isReady;
}

/// A database that has once answered is opened anew until it does again: an emptied file, say, only lacks its tables.
bool Database::answers()
{
    std::shared_ptr<engine::Engine> asked;
    try {
        asked = open();
        readOneRow(*asked);
        m_hasAnswered = true;
        return true;
    } catch (const engine::Error &error) {
        if (error.failure() == engine::Failure::Unavailable || (m_hasAnswered && error.failure() == engine::Failure::Database))
            giveUp(asked, error.what());
    } catch (const std::exception &error) {
        logLine("数据库“" + m_configuration.name + "”：" + error.what());
    }
    return false;
}

} // namespace server
