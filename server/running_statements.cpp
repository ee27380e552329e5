#include "server/running_statements.h"

#include <algorithm>
#include <chrono>
#include <functional>

namespace server {

void RunningStatements::add(const std::shared_ptr<Statement> &statement, const std::string &address)
{
    const std::lock_guard lock(m_mutex);
    m_entries[statement->request().id] = { statement, address };
}

void RunningStatements::remove(const Statement &statement)
{
    const std::lock_guard lock(m_mutex);
    m_entries.erase(statement.request().id);
}

std::vector<RunningStatements::Row> RunningStatements::rows() const
{
    using namespace std::chrono;
    std::vector<Row> rows;
    {
        const std::lock_guard lock(m_mutex);
        for (const auto &[id, entry] : m_entries) {
            const auto statement = entry.statement.lock();
            if (!statement)
                continue;
            const auto age = duration_cast<milliseconds>(Statement::Clock::now() - statement->begun());
            rows.push_back({ id, statement->request().user, entry.address, statement->database().configuration().name,
                statement->request().sql, statement->isWaiting(), age.count(), statement->rows() });
        }
    }
    std::ranges::sort(rows, std::ranges::greater(), &Row::milliseconds);
    return rows;
}

bool RunningStatements::end(const std::string &id)
{
    std::shared_ptr<Statement> statement;
    {
        const std::lock_guard lock(m_mutex);
        const auto found = m_entries.find(id);
        statement = found == m_entries.end() ? nullptr : found->second.statement.lock();
    }
    if (statement)
        statement->endByOperator();
    return statement != nullptr;
}

} // namespace server
