#include "platform/report/definition/expression.h"

#include "platform/dataset/data_set.h"
#include "platform/toolkit/clock.h"

#include <algorithm>

using namespace platform;

namespace report {

void Expression::bind(Binder &binder)
{
    for (Expression &operand : m_operands)
        operand.bind(binder);
    try {
        if (m_kind == Kind::Field)
            m_index = binder.field(m_name);
        else if (m_kind == Kind::Total)
            m_index = binder.total({ m_total, m_scope, m_operands.empty() ? nullptr : &m_operands.front(), m_offset });
    } catch (const SyntaxError &error) {
        throw SyntaxError { error.what, m_offset };
    }
}

packet::Decimal Expression::number(const Context &context) const
{
    const Value value = evaluate(context);
    if (value.isNull())
        return {};
    const auto number = value.toNumber();
    if (!number)
        throw Exception(QStringLiteral("“%1”不是数字").arg(value.toText().left(40)));
    return *number;
}

bool Expression::holds(const Context &context) const
{
    const Value value = evaluate(context);
    const auto number = value.toNumber();
    return number ? number->units != 0 : !value.isNull();
}

Value Expression::arithmetic(const Context &context) const
{
    if (m_kind == Kind::Negative)
        return negated(m_operands[0].number(context));
    if (m_kind == Kind::Add) {
        // A text that is no number makes "+" join, as people write it.
        const Value left = m_operands[0].evaluate(context);
        const Value right = m_operands[1].evaluate(context);
        const auto first = left.toNumber();
        const auto second = right.toNumber();
        if ((left.isNumber() || right.isNumber() || (first && second)) && (first || left.isNull()) && (second || right.isNull()))
            return first.value_or(packet::Decimal {}) + second.value_or(packet::Decimal {});
        return QString(left.toText() + right.toText());
    }
    const packet::Decimal left = m_operands[0].number(context);
    const packet::Decimal right = m_operands[1].number(context);
    if (m_kind == Kind::Subtract)
        return left + negated(right);
    return m_kind == Kind::Multiply ? product(left, right) : quotient(left, right);
}

Value Expression::comparison(const Context &context) const
{
    const auto truth = [](bool value) { return Value(packet::Decimal { value ? 1 : 0, 0 }); };
    switch (m_kind) {
    case Kind::Not:
        return truth(!m_operands[0].holds(context));
    case Kind::And:
        return truth(m_operands[0].holds(context) && m_operands[1].holds(context));
    case Kind::Or:
        return truth(m_operands[0].holds(context) || m_operands[1].holds(context));
    default:
        break;
    }
    const auto order = m_operands[0].evaluate(context).compare(m_operands[1].evaluate(context));
    switch (m_kind) {
    case Kind::Equal:
        return truth(order == 0);
    case Kind::NotEqual:
        return truth(order != 0);
    case Kind::Less:
        return truth(order < 0);
    case Kind::LessEqual:
        return truth(order <= 0);
    case Kind::Greater:
        return truth(order > 0);
    default:
        return truth(order >= 0);
    }
}

Value Expression::call(const Context &context) const
{
    const auto wholeNumber
        = [&](int operand) { return int(std::clamp(m_operands[std::size_t(operand)].number(context).toDouble(), -1e6, 1e6)); };
    switch (m_kind) {
    case Kind::If:
        return m_operands[m_operands[0].holds(context) ? 1 : 2].evaluate(context);
    case Kind::Format:
        return formatted(m_operands[0].evaluate(context), m_operands[1].evaluate(context).toText());
    case Kind::Part:
        return m_operands[0].evaluate(context).toText().mid(std::max(0, wholeNumber(1) - 1), std::max(0, wholeNumber(2)));
    case Kind::Round:
        return m_operands[0].number(context).rescaled(std::clamp(wholeNumber(1), 0, 20));
    default: {
        const Value value = m_operands[0].evaluate(context);
        return value.isNull() ? m_operands[1].evaluate(context) : value;
    }
    }
}

Value Expression::evaluate(const Context &context) const
{
    switch (m_kind) {
    case Kind::Constant:
        return m_value;
    case Kind::Field:
        if (context.row < 0 || context.rows->isNull(m_index, context.row))
            return {};
        if (const FieldType type = context.rows->field(m_index)->type(); type != FieldType::Text && type != FieldType::DateTime)
            return *context.rows->number(m_index, context.row);
        return context.rows->text(m_index, context.row);
    case Kind::PageNumber:
        return packet::Decimal { context.page, 0 };
    case Kind::PageCount:
        return QString(pageCountMark);
    case Kind::Line:
        return packet::Decimal { context.row + 1, 0 };
    case Kind::Date:
        return dateToText(Clock::today());
    case Kind::Time:
        return Clock::now().toString(u"hh:mm:ss");
    case Kind::Total:
        return (*context.totals)[std::size_t(m_index)];
    case Kind::Join:
        return QString(m_operands[0].evaluate(context).toText() + m_operands[1].evaluate(context).toText());
    case Kind::Negative:
    case Kind::Add:
    case Kind::Subtract:
    case Kind::Multiply:
    case Kind::Divide:
        return arithmetic(context);
    case Kind::If:
    case Kind::Format:
    case Kind::Part:
    case Kind::Round:
    case Kind::FirstKnown:
        return call(context);
    default:
        return comparison(context);
    }
}

} // namespace report
