#include "platform/report/definition/value.h"

#include "packet/packet.h"
#include "platform/toolkit/exception.h"

#include <algorithm>

namespace report {

namespace {

constexpr int largestScale = 20;

bool isDigitPlace(QChar character) { return character == u'0' || character == u'#' || character == u',' || character == u'.'; }

QString grouped(QString digits)
{
    const qsizetype point = digits.indexOf(u'.');
    const qsizetype first = digits.startsWith(u'-') ? 1 : 0;
    for (qsizetype position = (point < 0 ? digits.size() : point) - 3; position > first; position -= 3)
        digits.insert(position, u',');
    return digits;
}

QString formattedNumber(packet::Decimal number, const QString &format)
{
    const auto begin = std::find_if(format.begin(), format.end(), isDigitPlace);
    const auto end = std::find_if_not(begin, format.end(), isDigitPlace);
    if (begin == end)
        return QString::fromStdString(number.toString());
    const QStringView places(begin, end);
    const qsizetype point = places.indexOf(u'.');
    const QStringView decimals = point < 0 ? QStringView() : places.mid(point + 1);
    QString digits = QString::fromStdString(number.toFixed(int(std::min<qsizetype>(decimals.size(), largestScale))));
    for (qsizetype place = decimals.size() - 1; place >= 0 && decimals[place] == u'#' && digits.endsWith(u'0'); --place)
        digits.chop(1);
    if (digits.endsWith(u'.'))
        digits.chop(1);
    return QStringView(format.begin(), begin) + (places.contains(u',') ? grouped(digits) : digits) + QStringView(end, format.end());
}

/// Puts the parts of "yyyy-mm-dd hh:mm:ss" where the format names them.
QString formattedTime(const QString &text, const QString &format)
{
    struct Part {
        QStringView name;
        int position;
    };
    static constexpr Part parts[] { { u"yyyy", 0 }, { u"yy", 2 }, { u"mm", 5 }, { u"dd", 8 }, { u"hh", 11 }, { u"nn", 14 }, { u"ss", 17 } };
    if (!packet::parseTimestamp(text.toStdString()))
        return text;
    const QString whole = text + QStringView(u"0000-00-00 00:00:00").mid(text.size());
    QString result;
    for (qsizetype position = 0; position < format.size();) {
        const QStringView rest = QStringView(format).mid(position);
        const auto part
            = std::find_if(std::begin(parts), std::end(parts), [rest](const Part &candidate) { return rest.startsWith(candidate.name); });
        if (part == std::end(parts)) {
            result += format[position++];
        } else {
            result += QStringView(whole).mid(part->position, part->name.size());
            position += part->name.size();
        }
    }
    return result;
}

} // namespace

QString Value::toText() const { return m_number ? QString::fromStdString(m_number->toString()) : m_text; }

std::optional<packet::Decimal> Value::toNumber() const
{
    return m_number || m_text.isEmpty() ? m_number : packet::Decimal::parse(m_text.toStdString());
}

std::strong_ordering Value::compare(const Value &other) const
{
    if (m_number || other.m_number) {
        const auto left = toNumber();
        const auto right = other.toNumber();
        if (left && right)
            return *left <=> *right;
    }
    return toText().compare(other.toText()) <=> 0;
}

QString formatted(const Value &value, const QString &format)
{
    if (format.isEmpty() || value.isNull())
        return value.toText();
    if (value.isNumber())
        return formattedNumber(*value.toNumber(), format);
    return format.contains(u'y') || format.contains(u'h') ? formattedTime(value.toText(), format) : value.toText();
}

packet::Decimal negated(packet::Decimal number) { return { -number.units, number.scale }; }

packet::Decimal product(packet::Decimal left, packet::Decimal right)
{
    packet::Int128 units = 0;
    if (packet::multiplyOverflows(left.units, right.units, units) || left.scale + right.scale > 38)
        throw Exception(QStringLiteral("乘积的位数太多"));
    const packet::Decimal result { units, left.scale + right.scale };
    return result.scale > largestScale ? result.rescaled(largestScale) : result;
}

packet::Decimal quotient(packet::Decimal left, packet::Decimal right)
{
    if (right.units == 0)
        throw Exception(QStringLiteral("除数为 0"));
    // Eight digits more than the dividend has are enough for shares and means of money.
    const int scale = std::min(std::max(left.scale, 2) + 8, largestScale);
    packet::Int128 dividend = left.units;
    for (int digit = left.scale; digit < scale + right.scale; ++digit) {
        if (packet::multiplyOverflows(dividend, 10, dividend))
            throw Exception(QStringLiteral("商的位数太多"));
    }
    const packet::Int128 whole = dividend / right.units;
    const packet::Int128 rest = dividend % right.units;
    const auto size = [](packet::Int128 number) { return number < 0 ? -number : number; };
    const bool up = size(rest) >= size(right.units) - size(rest);
    return { whole + (up ? ((dividend < 0) == (right.units < 0) ? 1 : -1) : 0), scale };
}

} // namespace report
