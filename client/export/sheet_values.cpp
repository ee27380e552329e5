#include "client/export/sheet_values.h"

#include <algorithm>

namespace {

constexpr qsizetype longestSheetName = 31;
constexpr qsizetype longestCell = 32'767; ///< characters

} // namespace

std::optional<double> exactNumber(packet::Decimal value)
{
    constexpr packet::Int128 limit = 1'000'000'000'000'000; // the first with 16 digits
    const auto fits = [&value] { return value.units < limit && value.units > -limit; };
    for (; !fits() && value.scale > 0 && value.units % 10 == 0; --value.scale)
        value.units /= 10;
    return fits() ? std::optional(value.toDouble()) : std::nullopt;
}

std::optional<double> dayNumber(std::int64_t seconds)
{
    constexpr std::int64_t firstDay = -2'203'891'200; // 1900-03-01
    constexpr double dayOfEpoch = 25'569; // 1970-01-01
    constexpr double secondsPerDay = 86'400;
    return seconds < firstDay ? std::nullopt : std::optional(dayOfEpoch + double(seconds) / secondsPerDay);
}

QByteArray sheetName(const QString &title, int number)
{
    QString name = title;
    for (QChar &letter : name) {
        if (QStringView(u"[]:*?/\\").contains(letter) || letter < u' ')
            letter = u' ';
    }
    const QString suffix = number > 1 ? QStringLiteral(" (%1)").arg(number) : QString();
    name.truncate(longestSheetName - suffix.size());
    if (!name.isEmpty() && name.back().isHighSurrogate())
        name.chop(1);
    while (name.startsWith(u'\'') || name.startsWith(u' '))
        name.remove(0, 1);
    while (name.endsWith(u'\'') || name.endsWith(u' '))
        name.chop(1);
    return ((name.isEmpty() ? QStringLiteral("数据") : name) + suffix).toUtf8();
}

QByteArray numberFormat(CellKind kind, int scale)
{
    switch (kind) {
    case CellKind::Text:
        return "@";
    case CellKind::Integer:
        return "0";
    case CellKind::Time:
        return "yyyy-mm-dd hh:mm:ss";
    case CellKind::Float:
        return "General";
    case CellKind::Decimal:
        break;
    }
    return "#,##0." + QByteArray(std::max(2, scale), '0');
}

void shortenForCell(std::string &text)
{
    if (text.size() <= std::size_t(longestCell))
        return;
    const QString whole = QString::fromStdString(text);
    if (whole.size() > longestCell)
        text = QString(whole.left(longestCell - 1) + u'…').toStdString();
}
