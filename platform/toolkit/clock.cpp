#include "platform/toolkit/clock.h"

#include "platform/toolkit/exception.h"

#include <QElapsedTimer>
#include <QRegularExpression>

using namespace platform;

namespace {

struct SetClock {
    QDateTime start;
    QElapsedTimer running;
};
SetClock setClock;

} // namespace

QDateTime Clock::now()
{
    return setClock.start.isValid() ? setClock.start.addMSecs(setClock.running.elapsed()) : QDateTime::currentDateTime();
}

QDate Clock::today() { return now().date(); }

void Clock::set(const QDateTime &time)
{
    setClock.start = time;
    setClock.running.start();
}

namespace platform {

QString dateToText(QDate date) { return date.toString(u"yyyy-MM-dd"); }

QString dateTimeToText(const QDateTime &time) { return time.toString(u"yyyy-MM-dd HH:mm:ss"); }

QDateTime textToDateTime(const QString &text)
{
    static const QRegularExpression form(
        QStringLiteral(R"(^\s*(\d{4})-(\d{1,2})-(\d{1,2})(?:\s+(\d{1,2}):(\d{1,2})(?::(\d{1,2}))?)?\s*$)"));
    const QRegularExpressionMatch match = form.match(text);
    const auto part = [&match](int index) { return match.capturedView(index).toInt(); };
    const QDate date(part(1), part(2), part(3));
    const QTime time(part(4), part(5), part(6));
    if (!match.hasMatch() || !date.isValid() || !time.isValid())
        throw Exception(QStringLiteral("“%1”不是有效的日期时间！").arg(text));
    // A time zone without daylight saving, so that no hour of the day is impossible and differences are plain seconds.
    return QDateTime(date, time, Qt::UTC);
}

} // namespace platform
