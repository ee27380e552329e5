#include "platform/grid/number_text.h"

#include <algorithm>

namespace platform {

namespace {

constexpr int groupSize = 3;
constexpr int mostDigits = 12; ///< behind the point on paper

ThousandsMarks marksInUse = ThousandsMarks::On;

bool areDigits(QStringView text)
{
    return !text.isEmpty() && std::ranges::all_of(text, [](QChar digit) { return digit >= u'0' && digit <= u'9'; });
}

} // namespace

ThousandsMarks thousandsMarks() { return marksInUse; }

void setThousandsMarks(ThousandsMarks marks) { marksInUse = marks; }

QString shownNumber(const QString &number, int decimals)
{
    const qsizetype begin = number.startsWith(u'-') ? 1 : 0;
    const qsizetype point = number.indexOf(u'.', begin);
    const qsizetype end = point < 0 ? number.size() : point;
    const QStringView fraction = point < 0 ? QStringView() : QStringView(number).sliced(point + 1);
    if (!areDigits(QStringView(number).sliced(begin, end - begin)) || (point >= 0 && !areDigits(fraction)))
        return number;
    QString shown = number;
    if (point < 0 && decimals > 0)
        shown += u'.';
    if (fraction.size() < decimals)
        shown += QString(decimals - fraction.size(), u'0');
    for (qsizetype place = end - groupSize; marksInUse == ThousandsMarks::On && place > begin; place -= groupSize)
        shown.insert(place, u',');
    return shown;
}

QString numberFormat(int decimals)
{
    const QString whole = marksInUse == ThousandsMarks::On ? QStringLiteral("#,##0.") : QStringLiteral("0.");
    return whole + QString(decimals, u'0') + QString(std::max(0, mostDigits - decimals), u'#');
}

} // namespace platform
