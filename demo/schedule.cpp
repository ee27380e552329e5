#include "demo/schedule.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace demo {
namespace {

constexpr Moment firstHour = 8;
constexpr std::array<std::uint64_t, 13> hourShares { 20, 60, 90, 80, 40, 60, 90, 110, 130, 140, 100, 60, 30 };
constexpr std::array<std::uint64_t, 7> weekdayShares { 6, 10, 10, 10, 10, 10, 8 };

} // namespace

Schedule::Schedule(Moment firstDay, Moment end)
{
    std::uint64_t limit = 0;
    for (Moment today = startOfDay(firstDay); today < end; today += day)
        for (std::size_t index = 0; index < hourShares.size(); ++index) {
            const Moment start = today + (firstHour + static_cast<Moment>(index)) * hour;
            const Moment length = std::min(hour, end - start);
            if (length < minute)
                continue;
            limit += hourShares[index] * weekdayShares[static_cast<std::size_t>(weekday(today))]
                * static_cast<std::uint64_t>(length / minute);
            m_slots.push_back({ start, length, limit });
        }
    if (m_slots.empty())
        throw std::invalid_argument("这段时间里没有营业时间（每天从 8 点起），请增加天数或推后截止时间。");
}

Moment Schedule::pickUp(std::uint64_t index, std::uint64_t count, Random &random) const
{
    const auto total = m_slots.back().limit;
    const auto place = total / count * index + total % count * index / count;
    const auto slot = std::upper_bound(
        m_slots.begin(), m_slots.end(), place, [](std::uint64_t value, const Slot &candidate) { return value < candidate.limit; });
    return slot->start + random.below(slot->length);
}

} // namespace demo
