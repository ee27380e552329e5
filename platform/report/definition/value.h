#pragma once

#include "packet/decimal.h"

#include <QString>

#include <optional>

namespace report {

/// What an expression comes to: nothing, a text or an exact number.
class Value {
public:
    Value() = default;
    Value(QString text)
        : m_text(std::move(text))
    {
    }
    Value(packet::Decimal number)
        : m_number(number)
    {
    }

    bool isNull() const { return !m_number && m_text.isEmpty(); }
    bool isNumber() const { return m_number.has_value(); }
    QString toText() const;
    /// A text that reads as a number counts as one; nothing is nothing.
    std::optional<packet::Decimal> toNumber() const;
    /// Numbers by their size, everything else by its text.
    std::strong_ordering compare(const Value &other) const;

private:
    QString m_text;
    std::optional<packet::Decimal> m_number;
};

/// By `format`: "#,##0.00" for numbers, "yyyy-mm-dd hh:nn:ss" for times; text around the digits stays. A value that the format does
/// not fit is shown plainly.
QString formatted(const Value &value, const QString &format);

packet::Decimal negated(packet::Decimal number);
/// These throw Exception when the result has too many digits, or when the divisor is 0.
packet::Decimal product(packet::Decimal left, packet::Decimal right);
packet::Decimal quotient(packet::Decimal left, packet::Decimal right);

} // namespace report
