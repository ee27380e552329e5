#pragma once

#include <QDateTime>
#include <QString>

#include <optional>
#include <span>

namespace platform {

/// A range of time as people name it; it means other days every day.
enum class NamedRange { Today, Yesterday, ThisWeek, LastWeek, ThisMonth, LastMonth, LastShift };

/// Both ends belong to it.
struct TimeRange {
    QDateTime start;
    QDateTime end;

    bool operator==(const TimeRange &) const = default;
};

/// All of them, in the order in which they are offered.
std::span<const NamedRange> namedRanges();
/// "今天", "上班次".
QString rangeName(NamedRange range);
/// What a name means today: whole days up to the last second, weeks from Monday; the last shift runs from noon to noon.
TimeRange rangeOn(NamedRange range, QDate today);
/// The name of a range, if it has one today.
std::optional<NamedRange> nameOfRange(const TimeRange &range, QDate today);

} // namespace platform
