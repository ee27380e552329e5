#include "server/users/login_throttle.h"

#include <algorithm>

namespace server {

namespace {

constexpr auto forgetEvery = std::chrono::seconds(10);

} // namespace

LoginThrottle::Turn LoginThrottle::begin(Clock::time_point now, const std::string &name, const std::string &address)
{
    const std::lock_guard lock(m_mutex);
    forget(now);
    Record &pair = m_pairs[{ name, address }];
    auto wait = waitOf(now, pair, allowanceOf(pair));
    if (!pair.loggedIn)
        wait = std::max({ wait, waitIn(now, m_names, name, ofName), waitIn(now, m_addresses, address, ofAddress) });
    if (wait.count() > 0)
        return { Answer::Wait, wait };
    // Many tries at a time must not get further than the same tries one after the other.
    if (waitOf(now, pair, allowanceOf(pair), pair.underWay).count() > 0)
        return { Answer::Busy, std::chrono::seconds(1) };
    ++pair.underWay;
    return {};
}

void LoginThrottle::finish(Clock::time_point now, const std::string &name, const std::string &address, Result result)
{
    const std::lock_guard lock(m_mutex);
    Record &pair = m_pairs[{ name, address }];
    --pair.underWay;
    if (result == Result::Right) {
        pair.loggedIn = now;
        pair.failures = 0;
    } else if (result == Result::Wrong) {
        count(now, pair, allowanceOf(pair));
        count(now, m_names[name], ofName);
        count(now, m_addresses[address], ofAddress);
    }
}

double LoginThrottle::failuresAt(Clock::time_point now, const Record &record, const Allowance &allowance)
{
    return std::max(0.0, record.failures - std::chrono::duration<double>(now - record.last) / allowance.forgotten);
}

std::chrono::seconds LoginThrottle::waitOf(Clock::time_point now, const Record &record, const Allowance &allowance, int underWay)
{
    const double tooMany = failuresAt(now, record, allowance) + underWay - (allowance.free - 1);
    return std::chrono::ceil<std::chrono::seconds>(std::max(0.0, tooMany) * std::chrono::duration<double>(allowance.forgotten));
}

std::chrono::seconds LoginThrottle::waitIn(
    Clock::time_point now, const std::map<std::string, Record> &records, const std::string &key, const Allowance &allowance)
{
    const auto found = records.find(key);
    return found == records.end() ? std::chrono::seconds(0) : waitOf(now, found->second, allowance);
}

/// Never beyond what is free, so that the next try is one forgotten failure away.
void LoginThrottle::count(Clock::time_point now, Record &record, const Allowance &allowance)
{
    record.failures = std::min(failuresAt(now, record, allowance) + 1, double(allowance.free));
    record.last = now;
}

void LoginThrottle::forget(Clock::time_point now)
{
    if (now - m_forgot < forgetEvery && m_pairs.size() <= mostKept)
        return;
    m_forgot = now;
    const auto isOver = [now](const Allowance &allowance) {
        return [now, allowance](const auto &entry) { return entry.second.underWay == 0 && failuresAt(now, entry.second, allowance) == 0; };
    };
    std::erase_if(m_names, isOver(ofName));
    std::erase_if(m_addresses, isOver(ofAddress));
    std::erase_if(m_pairs, [&](const auto &entry) { return !entry.second.loggedIn && isOver(here)(entry); });
    for (Clock::duration kept = rememberedFor; kept.count() > 0; kept /= 2) {
        std::erase_if(m_pairs, [&](const auto &entry) {
            const Record &record = entry.second;
            return record.underWay == 0 && record.loggedIn && now - *record.loggedIn > kept;
        });
        if (m_pairs.size() <= mostKept)
            return;
    }
}

} // namespace server
