#include "platform/editors/date_entry.h"

#include "platform/toolkit/clock.h"

#include <QRegularExpression>

#include <algorithm>

namespace platform {

namespace {

QString narrow(QString text)
{
    constexpr char16_t firstWide = 0xFF01;
    constexpr char16_t lastWide = 0xFF5E;
    constexpr char16_t firstNarrow = u'!';
    for (QChar &character : text) {
        if (character >= QChar(firstWide) && character <= QChar(lastWide))
            character = QChar(character.unicode() - firstWide + firstNarrow);
    }
    return text.simplified();
}

} // namespace

std::optional<DateEntry> readDateEntry(const QString &text)
{
    static const QRegularExpression form(
        QStringLiteral(R"(^(?:([0-9]{4})([0-9]{2})([0-9]{2})|(?:([0-9]{4})[-/])?([0-9]{1,2})[-/]([0-9]{1,2})|([0-9]{1,2})))"
                       R"((?: ([0-9]{1,2}):([0-9]{1,2})(?::([0-9]{1,2}))?)?$)"));
    const QRegularExpressionMatch match = form.match(narrow(text));
    if (!match.hasMatch())
        return std::nullopt;
    const auto number = [&match](int group) { return match.capturedView(group).toInt(); };
    DateEntry entry;
    if (match.hasCaptured(1))
        entry.date = QDate(number(1), number(2), number(3));
    else if (match.hasCaptured(7))
        entry.date = QDate(Clock::today().year(), Clock::today().month(), number(7));
    else
        entry.date = QDate(match.hasCaptured(4) ? number(4) : Clock::today().year(), number(5), number(6));
    if (match.hasCaptured(8))
        entry.time = QTime(number(8), number(9), number(10));
    const bool possible = entry.date.isValid() && (!entry.time || entry.time->isValid());
    return possible ? std::optional(entry) : std::nullopt;
}

DatePart datePartAt(const QString &text, int position)
{
    const auto isSeparator = [](QChar character) { return !character.isDigit(); };
    if (std::none_of(text.begin(), text.end(), isSeparator))
        return DatePart::Day;
    const auto before = std::count_if(text.begin(), text.begin() + position, isSeparator);
    return DatePart(std::min(int(before), int(DatePart::Second)));
}

QDateTime stepDatePart(const QDateTime &time, DatePart part, int steps)
{
    QDateTime stepped;
    switch (part) {
    case DatePart::Year:
        stepped = time.addYears(steps);
        break;
    case DatePart::Month:
        stepped = time.addMonths(steps);
        break;
    case DatePart::Day:
        stepped = time.addDays(steps);
        break;
    case DatePart::Hour:
        stepped = time.addSecs(qint64(steps) * 3600);
        break;
    case DatePart::Minute:
        stepped = time.addSecs(qint64(steps) * 60);
        break;
    case DatePart::Second:
        stepped = time.addSecs(steps);
        break;
    }
    const int year = stepped.date().year();
    return year >= 1 && year <= 9999 ? stepped : QDateTime();
}

} // namespace platform
