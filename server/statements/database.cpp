#include "server/statements/database.h"

#include <algorithm>
#include <utility>

namespace server {

namespace {

constexpr auto askEvery = std::chrono::seconds(1);
constexpr auto endingTime = std::chrono::seconds(1); ///< that a statement may take beyond its limit

} // namespace

Database::Database(const DatabaseConfiguration &configuration)
    : m_configuration(configuration)
    , m_sharedResults(configuration.sharedAge, configuration.keptBytes)
    , m_pool({ configuration.workers, configuration.queue, configuration.userStatements, configuration.userQueue })
{
    m_replicas.push_back(std::make_unique<Replica>(m_configuration, m_configuration.url, m_configuration.name));
    for (const std::string &url : m_configuration.replicas) {
        const std::string number = std::to_string(m_replicas.size() + 1);
        m_replicas.push_back(std::make_unique<Replica>(m_configuration, url, m_configuration.name + "（第 " + number + " 个地址）"));
    }
}

/// Those that may be asked, the one with the least work first.
std::vector<Replica *> Database::fitReplicas() const
{
    std::vector<std::pair<std::size_t, Replica *>> byWork; // which changes meanwhile
    for (const auto &replica : m_replicas) {
        if (m_replicas.size() == 1 || replica->isFit())
            byWork.emplace_back(replica->running(), replica.get());
    }
    std::ranges::stable_sort(byWork, {}, &std::pair<std::size_t, Replica *>::first);
    std::vector<Replica *> fit;
    for (const auto &[work, replica] : byWork)
        fit.push_back(replica);
    return fit;
}

void Database::run(const std::function<void(engine::Engine &)> &use, const std::function<bool()> &mayRepeat)
{
    int lost = 0;
    std::string fault = "每个地址都不能使用，或者落后太多";
    for (Replica *const replica : fitReplicas()) {
        bool isOpen = false;
        try {
            return replica->run([&](engine::Engine &engine) {
                isOpen = true;
                use(engine);
            });
        } catch (const engine::Error &error) {
            // What ended one server is not to end all of them.
            lost += isOpen;
            if (error.failure() != engine::Failure::Unavailable || !mayRepeat() || lost > 1)
                throw;
            fault = error.what();
        }
    }
    throw engine::Error(engine::Failure::Unavailable, fault);
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
        m_isReady = false;
        for (const auto &replica : m_replicas)
            m_isReady |= replica->answers() && (m_replicas.size() == 1 || replica->isFit());
        m_readyAsked = Clock::now();
    }
    return m_isReady;
}

} // namespace server
