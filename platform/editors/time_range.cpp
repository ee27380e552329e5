#include "platform/editors/time_range.h"

#include "options/named_days.h"

#include <algorithm>
#include <utility>

namespace platform {

namespace {

constexpr NamedRange ranges[] = { NamedRange::Today, NamedRange::Yesterday, NamedRange::ThisWeek, NamedRange::LastWeek,
    NamedRange::ThisMonth, NamedRange::LastMonth, NamedRange::LastShift };

// Both enumerations count alike.
static_assert(std::size(ranges) == std::size(options::dayNames) && int(NamedRange::LastShift) == int(options::NamedDays::LastShift));

const QDate epoch(1970, 1, 1);

std::pair<QDate, QDate> daysOf(NamedRange range, QDate today)
{
    const std::chrono::sys_days day { std::chrono::days(epoch.daysTo(today)) };
    const auto [first, last] = options::daysOf(options::NamedDays(int(range)), day);
    return { epoch.addDays(first.time_since_epoch().count()), epoch.addDays(last.time_since_epoch().count()) };
}

} // namespace

std::span<const NamedRange> namedRanges() { return ranges; }

QString rangeName(NamedRange range) { return QString::fromUtf8(options::dayNames[int(range)]); }

TimeRange rangeOn(NamedRange range, QDate today)
{
    const auto [first, last] = daysOf(range, today);
    const bool isShift = range == NamedRange::LastShift;
    return { QDateTime(first, isShift ? QTime(12, 0) : QTime(0, 0), Qt::UTC),
        QDateTime(last, isShift ? QTime(11, 59, 59) : QTime(23, 59, 59), Qt::UTC) };
}

std::optional<NamedRange> nameOfRange(const TimeRange &range, QDate today)
{
    const auto found
        = std::find_if(std::begin(ranges), std::end(ranges), [&](NamedRange candidate) { return rangeOn(candidate, today) == range; });
    return found == std::end(ranges) ? std::nullopt : std::optional(*found);
}

} // namespace platform
