#include "platform/toolkit/plugin_interface.h"

#include "platform/toolkit/application.h"
#include "platform/toolkit/form.h"

namespace platform {

namespace {

constexpr double millisecondsPerDay = 86'400'000.0;
const QDate firstDay(1899, 12, 30);

} // namespace

void notifyHost(TForm *form, HostMessage message) { Application->mainForm()->perform(message, reinterpret_cast<quintptr>(form), 0); }

double daysOf(const QDateTime &time)
{
    return double(firstDay.daysTo(time.date())) + double(time.time().msecsSinceStartOfDay()) / millisecondsPerDay;
}

QDateTime dateTimeOfDays(double days) { return QDateTime(firstDay, QTime(0, 0), Qt::UTC).addMSecs(qRound64(days * millisecondsPerDay)); }

} // namespace platform
