#include "server/statements/database.h"

#include "engine/pool/open_engine.h"
#include "server/base/log.h"

namespace server {

namespace {

constexpr auto askEvery = std::chrono::seconds(1);
constexpr auto readyLimit = std::chrono::seconds(2);

} // namespace

Database::Database(const DatabaseConfiguration &configuration)
    : m_configuration(configuration)
    , m_pool({ configuration.workers, configuration.queue, configuration.userStatements, configuration.userQueue })
{
}

std::shared_ptr<engine::Engine> Database::engine()
{
    const std::lock_guard lock(m_openMutex);
    if (m_engine)
        return m_engine;
    if (m_openError.empty() || Clock::now() - m_openTried >= askEvery) {
        m_openTried = Clock::now();
        try {
            // One more than the workers use, for isReady().
            m_engine = engine::openEngine(m_configuration.url, { m_configuration.workers + 1, m_configuration.tables });
            return m_engine;
        } catch (const std::exception &error) {
            if (m_openError != error.what())
                logLine("数据库“" + m_configuration.name + "”：" + error.what());
            m_openError = error.what();
        }
    }
    throw engine::Error(engine::Failure::Unavailable, m_openError);
}

bool Database::isReady()
{
    const std::lock_guard lock(m_readyMutex);
    if (m_readyAsked == Clock::time_point() || Clock::now() - m_readyAsked >= askEvery) {
        m_isReady = answers();
        m_readyAsked = Clock::now();
    }
    return m_isReady;
}

bool Database::answers()
{
    try {
        engine()->query("select 1 as ready from dual", { .timeLimit = readyLimit });
        return true;
    } catch (const std::exception &) {
        return false;
    }
}

} // namespace server
