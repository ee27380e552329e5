#include "server/statements/shared_results.h"

#include <utility>

namespace server {

SharedResults::SharedResults(std::chrono::milliseconds age, std::size_t keptBytes)
    : m_age(age)
    , m_largest(keptBytes)
{
}

std::unique_ptr<SharedResults::Lead> SharedResults::join(const std::string &question, Taker take)
{
    ResultPtr result;
    {
        const std::lock_guard lock(m_mutex);
        forget(0);
        const auto now = Clock::now();
        RunPtr &run = m_runs[question];
        if (!run || now - run->begun >= m_age) {
            run = std::make_shared<Run>(Run { now });
            return std::make_unique<Lead>(*this, question, run);
        }
        result = run->result;
        if (!result) {
            run->waiting.push_back(std::move(take));
            return nullptr;
        }
    }
    take(News::Result, result);
    return nullptr;
}

void SharedResults::end(const std::string &question, const RunPtr &run, News news, const ResultPtr &result, Keep keep)
{
    std::vector<Taker> waiting;
    {
        const std::lock_guard lock(m_mutex);
        waiting = std::exchange(run->waiting, {});
        const bool fits = keep == Keep::Yes && result && result->bytes <= m_largest;
        if (fits && m_runs[question] == run) {
            forget(result->bytes);
            run->result = result;
            m_keptBytes += result->bytes;
            m_kept.emplace_back(question, run);
        } else {
            drop(question, run);
        }
    }
    for (const Taker &take : waiting)
        take(news, result);
}

/// What is too old goes, and of the rest the oldest until there is room.
void SharedResults::forget(std::size_t room)
{
    const auto oldest = Clock::now() - m_age;
    while (!m_kept.empty() && (m_kept.front().second->begun <= oldest || m_keptBytes + room > m_largest)) {
        const auto [question, run] = std::move(m_kept.front());
        m_kept.pop_front();
        m_keptBytes -= run->result->bytes;
        drop(question, run);
    }
}

/// Another run may have taken its place.
void SharedResults::drop(const std::string &question, const RunPtr &run)
{
    const auto found = m_runs.find(question);
    if (found != m_runs.end() && (found->second == run || !found->second))
        m_runs.erase(found);
}

SharedResults::Lead::Lead(SharedResults &results, std::string question, RunPtr run)
    : m_results(results)
    , m_question(std::move(question))
    , m_run(std::move(run))
{
}

SharedResults::Lead::~Lead() { end(News::RunAgain, nullptr, Keep::No); }
void SharedResults::Lead::answer(const ResultPtr &result, Keep keep) { end(News::Result, result, keep); }
void SharedResults::Lead::giveUp() { end(News::RunAlone, nullptr, Keep::No); }

void SharedResults::Lead::end(News news, const ResultPtr &result, Keep keep)
{
    if (const RunPtr run = std::exchange(m_run, nullptr))
        m_results.end(m_question, run, news, result, keep);
}

} // namespace server
