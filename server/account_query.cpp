#include "server/account_query.h"

#include "engine/pool/open_engine.h"

#include <algorithm>
#include <stdexcept>

namespace server {

namespace {

constexpr auto timeLimit = std::chrono::seconds(20);
constexpr std::int64_t mostAccounts = 200'000;

const DatabaseConfiguration &servedDatabase(const Configuration &configuration)
{
    const auto &databases = configuration.databases;
    const auto isNamed = [&](const DatabaseConfiguration &database) { return database.name == configuration.accounts.database; };
    const auto found = std::find_if(databases.begin(), databases.end(), isNamed);
    return found == databases.end() ? databases.front() : *found;
}

} // namespace

AccountQuery::AccountQuery(const Configuration &configuration)
    : m_configuration(configuration)
    , m_served(servedDatabase(configuration))
    , m_database({ .name = "accounts", .url = m_served.url, .workers = 1 })
{
}

packet::PacketPtr AccountQuery::ask(const std::stop_token &stop)
try {
    if (!m_isPrivate)
        checkPrivacy();
    m_isPrivate = true;
    packet::PacketPtr rows;
    m_database.run(
        [&](engine::Engine &engine) {
            rows = engine.query(m_configuration.accounts.query, { .stop = stop, .timeLimit = timeLimit, .rowLimit = mostAccounts });
        },
        [] { return true; });
    return rows;
} catch (...) {
    m_isPrivate = false;
    throw;
}

/// The hashes of all passwords are nobody's to read.
void AccountQuery::checkPrivacy()
try {
    engine::openEngine(m_served.url, { 1, m_served.tables })
        ->query(m_configuration.accounts.query, { .timeLimit = timeLimit, .rowLimit = 1 });
    throw std::runtime_error(
        "用户的查询也能读取帐户表；请在小节“[database " + m_served.name + "]”的 tables 中列出允许查询的表，不要包括帐户表");
} catch (const engine::Error &error) {
    if (error.failure() != engine::Failure::Refused)
        throw;
}

} // namespace server
