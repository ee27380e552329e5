#include "server/statements/replica.h"

#include "engine/pool/open_engine.h"
#include "server/base/log.h"

#include <utility>

namespace server {

namespace {

constexpr auto askEvery = std::chrono::seconds(1);
constexpr auto readyLimit = std::chrono::seconds(2);

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

Replica::Replica(const DatabaseConfiguration &configuration, std::string url, std::string name)
    : m_configuration(configuration)
    , m_url(std::move(url))
    , m_name(std::move(name))
{
}

std::shared_ptr<engine::Engine> Replica::open()
{
    const std::lock_guard lock(m_openMutex);
    forgetReplaced();
    if (m_engine)
        return m_engine;
    if (Clock::now() - m_openTried < askEvery)
        throw engine::Error(engine::Failure::Unavailable, m_fault);
    m_openTried = Clock::now();
    m_engine = engine::openEngine(
        m_url, { m_configuration.connections(), m_configuration.tables, m_configuration.rules, m_configuration.lookupTables });
    m_fault.clear();
    m_isUp = true;
    return m_engine;
}

/// What runs on it goes on.
void Replica::forgetReplaced()
{
    const auto now = Clock::now();
    if (!m_engine || now - m_lookedAt < askEvery)
        return;
    m_lookedAt = now;
    if (!m_engine->isReplaced())
        return;
    m_engine = nullptr;
    m_openTried = {};
    logLine("数据库“" + m_name + "”的文件换过了，重新打开");
}

void Replica::giveUp(const std::shared_ptr<engine::Engine> &engine, const std::string &reason)
{
    const std::lock_guard lock(m_openMutex);
    if (m_engine == engine)
        m_engine = nullptr;
    m_isUp = m_engine != nullptr;
    if (m_fault == reason)
        return;
    m_fault = reason;
    logLine("数据库“" + m_name + "”不能使用：" + reason);
}

void Replica::run(const std::function<void(engine::Engine &)> &use)
{
    std::shared_ptr<engine::Engine> engine;
    ++m_running;
    const std::shared_ptr<void> atTheEnd(nullptr, [this](void *) { --m_running; });
    try {
        engine = open();
        use(*engine);
    } catch (const engine::Error &error) {
        if (error.failure() == engine::Failure::Unavailable)
            giveUp(engine, error.what());
        throw;
    }
}

/// A database that has once answered is opened anew until it does again: an emptied file, say, only lacks its tables.
bool Replica::answers()
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
        logLine("数据库“" + m_name + "”：" + error.what());
    }
    return false;
}

/// One thread asks; the others go by what it was told before.
bool Replica::isFit()
{
    const std::unique_lock lock(m_lagMutex, std::try_to_lock);
    if (lock && Clock::now() - m_lagAsked >= askEvery) {
        m_lagAsked = Clock::now();
        std::shared_ptr<engine::Engine> asked;
        try {
            asked = open();
            m_lag = asked->lag().count();
        } catch (const engine::Error &error) {
            if (error.failure() == engine::Failure::Unavailable)
                giveUp(asked, error.what());
        }
    }
    return m_isUp && lag() <= m_configuration.largestLag;
}

} // namespace server
