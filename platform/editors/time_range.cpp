#include "platform/editors/time_range.h"

#include <algorithm>
#include <utility>

namespace platform {

namespace {

constexpr NamedRange ranges[] = { NamedRange::Today, NamedRange::Yesterday, NamedRange::ThisWeek, NamedRange::LastWeek,
    NamedRange::ThisMonth, NamedRange::LastMonth, NamedRange::LastShift };

std::pair<QDate, QDate> daysOf(NamedRange range, QDate today)
{
    const QDate monday = today.addDays(1 - today.dayOfWeek());
    const QDate firstOfMonth(today.year(), today.month(), 1);
    switch (range) {
    case NamedRange::Today:
        return { today, today };
    case NamedRange::Yesterday:
        return { today.addDays(-1), today.addDays(-1) };
    case NamedRange::ThisWeek:
        return { monday, monday.addDays(6) };
    case NamedRange::LastWeek:
        return { monday.addDays(-7), monday.addDays(-1) };
    case NamedRange::ThisMonth:
        return { firstOfMonth, firstOfMonth.addMonths(1).addDays(-1) };
    case NamedRange::LastMonth:
        return { firstOfMonth.addMonths(-1), firstOfMonth.addDays(-1) };
    case NamedRange::LastShift:
        return { today.addDays(-1), today };
    }
    return {};
}

} // namespace

std::span<const NamedRange> namedRanges() { return ranges; }

QString rangeName(NamedRange range)
{
    constexpr const char16_t *names[] = { u"今天", u"昨天", u"本周", u"上周", u"本月", u"上月", u"上班次" };
    return QString::fromUtf16(names[int(range)]);
}

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
