#pragma once

#include <QDateTime>

#include <optional>

namespace platform {

/// What a person typed as a day, with a time or without.
struct DateEntry {
    QDate date;
    std::optional<QTime> time;
};

/// Reads "20260930", "2026-9-30", "2026/9/30", "9-30" (of this year) or "30" (of this month), each with an optional time "12:30[:15]";
/// full-width characters count as their narrow ones. Nothing when it is no possible day and time.
std::optional<DateEntry> readDateEntry(const QString &text);

/// A date and time by its parts, in the order in which they are written.
enum class DatePart { Year, Month, Day, Hour, Minute, Second };

/// The part that the cursor position stands in.
DatePart datePartAt(const QString &text, int position);
/// `time` with one part moved on by `steps`; the greater parts follow. Invalid when it leaves the years 1 to 9999.
QDateTime stepDatePart(const QDateTime &time, DatePart part, int steps);

} // namespace platform
