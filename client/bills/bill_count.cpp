#include "client/bills/bill_count.h"

#include <QSet>

namespace client {
namespace {

constexpr int longestNumber = 40; ///< no number is longer, and no foreign pattern is tried on more

} // namespace

BillPattern::BillPattern(const QString &pattern)
    : m_pattern(pattern)
{
    if (pattern.trimmed().isEmpty() || !m_pattern.isValid())
        m_pattern.setPattern(QStringLiteral("^[0-9A-Za-z-]{6,}$"));
}

bool BillPattern::fits(const QString &text) const { return text.size() <= longestNumber && m_pattern.match(text).hasMatch(); }

bool BillPattern::isShortened(const QString &text)
{
    static const QRegularExpression form(QStringLiteral("^[0-9](\\.[0-9]+)?[Ee]\\+?[0-9]{1,3}$"));
    return text.size() <= longestNumber && form.match(text).hasMatch();
}

QString BillCount::text() const
{
    if (lines == 0)
        return {};
    QString text = QStringLiteral("%1 个单号").arg(numbers.size());
    if (duplicates > 0)
        text += QStringLiteral("，%1 个重复").arg(duplicates);
    if (!oddLines.isEmpty())
        text += QStringLiteral("，%1 行不像单号").arg(oddLines.size());
    return text;
}

BillCount countBills(const QStringList &lines, const BillPattern &pattern)
{
    BillCount count;
    QSet<QString> seen;
    for (int line = 0; line < int(lines.size()); ++line) {
        const QString number = lines[line].trimmed();
        if (number.isEmpty())
            continue;
        ++count.lines;
        if (seen.contains(number)) {
            ++count.duplicates;
        } else if (pattern.fits(number)) {
            seen.insert(number);
            count.numbers.append(number);
        } else {
            count.oddLines.append(line);
            if (BillPattern::isShortened(number))
                count.shortened.append(number);
        }
    }
    return count;
}

} // namespace client
