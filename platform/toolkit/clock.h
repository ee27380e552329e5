#pragma once

#include <QDateTime>

/// The one clock of the program. `now` runs on from a set time, so that a test or the host's options can choose the day.
namespace Clock {
QDateTime now();
QDate today();
/// Makes now() start at `time` and run on; an invalid time returns to the computer's clock.
void set(const QDateTime &time);
} // namespace Clock

namespace platform {

/// "yyyy-mm-dd": the program's short date format.
QString dateToText(QDate date);
/// "yyyy-mm-dd hh:nn:ss".
QString dateTimeToText(const QDateTime &time);
/// Reads "yyyy-m-d" with or without " h:n[:s]", blanks around it allowed. Throws Exception when it is no date and time.
QDateTime textToDateTime(const QString &text);

} // namespace platform
