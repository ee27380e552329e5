#include "client/unattended/report_day.h"

#include "client/conditions/condition_set.h"
#include "client/unattended/caption.h"
#include "platform/editors/date_entry.h"
#include "platform/editors/time_range.h"
#include "platform/toolkit/clock.h"

#include <QRegularExpression>

#include <optional>

using namespace platform;

namespace client {
namespace {

WrongRequest noTime(const QString &text)
{
    return WrongRequest(
        QStringLiteral("“%1”不是时间。请写 %2，或 yyyy-mm-dd，后面可以加时间，如 昨天 12:00。").arg(text, ReportDay::words().join(u'、')));
}

QDateTime timeOn(QDate date, const std::optional<QTime> &time, RangeEdge edge)
{
    const QTime whole = edge == RangeEdge::Start ? QTime(0, 0) : QTime(23, 59, 59);
    return { date, time.value_or(whole), Qt::UTC };
}

QTime readTime(const QString &text)
{
    for (const char16_t *form : { u"H:m:s", u"H:m" }) {
        if (const QTime time = QTime::fromString(text, QString::fromUtf16(form)); time.isValid())
            return time;
    }
    return {};
}

} // namespace

QString ReportDay::timeText(const QString &text, RangeEdge edge) const
{
    const QString trimmed = text.trimmed();
    const QString word = trimmed.section(u' ', 0, 0);
    if (const auto range = rangeNamed(word)) {
        const TimeRange times = rangeOn(*range, m_day);
        const QDateTime end = edge == RangeEdge::Start ? times.start : times.end;
        if (word == trimmed)
            return dateTimeToText(end);
        const QTime time = readTime(trimmed.section(u' ', 1).trimmed());
        if (!time.isValid())
            throw noTime(text);
        return dateTimeToText(timeOn(end.date(), time, edge));
    }
    const auto entry = readDateEntry(trimmed);
    if (!entry)
        throw noTime(text);
    return dateTimeToText(timeOn(entry->date, entry->time, edge));
}

QString ReportDay::fileName(const QString &pattern) const
{
    static const QRegularExpression part(QStringLiteral("\\{([^{}:]*)(?::([^{}]*))?\\}"));
    QString name;
    qsizetype after = 0;
    for (const QRegularExpressionMatch &match : part.globalMatch(pattern)) {
        const auto range = rangeNamed(match.captured(1));
        if (!range)
            throw notAmong(QStringLiteral("日期"), match.captured(1), words());
        const bool isMonth = *range == NamedRange::ThisMonth || *range == NamedRange::LastMonth;
        const QString form
            = match.captured(2).isEmpty() ? (isMonth ? QStringLiteral("yyyy-MM") : QStringLiteral("yyyy-MM-dd")) : match.captured(2);
        name += pattern.mid(after, match.capturedStart() - after) + rangeOn(*range, m_day).start.toString(form);
        after = match.capturedEnd();
    }
    return name + pattern.mid(after);
}

QStringList ReportDay::words()
{
    QStringList names;
    for (const NamedRange range : namedRanges())
        names.append(rangeName(range));
    return names;
}

ReportDay ReportDay::of(const QString &text)
{
    const QString time = ReportDay(Clock::today()).timeText(text, RangeEdge::Start);
    return ReportDay(textToDateTime(time).date());
}

} // namespace client
