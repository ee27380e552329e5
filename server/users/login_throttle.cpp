#include "server/users/login_throttle.h"

#include <algorithm>

namespace server {

namespace {

template <class Records, class Time>
void forgetOld(Records &records, Time before)
{
    std::erase_if(records, [before](const auto &entry) { return entry.second.last < before; });
}

} // namespace

std::chrono::seconds LoginThrottle::tryAt(Clock::time_point now, const std::string &user, const std::string &address)
{
    const std::lock_guard lock(m_mutex);
    forget(now);
    Record &ofUser = m_users[user];
    Record &ofAddress = m_addresses[address];
    const auto wait = std::max(waitOf(ofUser, now), waitOf(ofAddress, now));
    if (wait.count() == 0) {
        count(ofUser, freeTriesOfUser, now);
        count(ofAddress, freeTriesOfAddress, now);
    }
    return wait;
}

void LoginThrottle::succeeded(const std::string &user, const std::string &address)
{
    const std::lock_guard lock(m_mutex);
    m_users.erase(user);
    const auto found = m_addresses.find(address);
    if (found == m_addresses.end())
        return;
    // Others at the address may have failed; only this try is taken back.
    found->second.next = {};
    if (--found->second.failures <= 0)
        m_addresses.erase(found);
}

std::chrono::seconds LoginThrottle::waitOf(const Record &record, Clock::time_point now)
{
    return record.next > now ? std::chrono::ceil<std::chrono::seconds>(record.next - now) : std::chrono::seconds(0);
}

void LoginThrottle::count(Record &record, int freeTries, Clock::time_point now)
{
    record.last = now;
    const int beyond = ++record.failures - freeTries;
    if (beyond >= 0)
        record.next = now + std::min<std::chrono::seconds>(longestWait, std::chrono::seconds(2LL << std::min(beyond, 20)));
}

void LoginThrottle::forget(Clock::time_point now)
{
    if (m_users.size() + m_addresses.size() < mostKept)
        return;
    for (auto kept : { std::chrono::seconds(forgottenAfter), longestWait, std::chrono::seconds(1), std::chrono::seconds(0) }) {
        forgetOld(m_users, now - kept);
        forgetOld(m_addresses, now - kept);
        if (m_users.size() + m_addresses.size() < mostKept)
            return;
    }
}

} // namespace server
