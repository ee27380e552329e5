#include "platform/report/layout/totals.h"

namespace report {

int Totals::add(const TotalCall &call, int scope)
{
    m_entries.push_back({ .kind = call.kind, .scope = scope, .argument = call.argument });
    m_values.push_back(valueOf(m_entries.back()));
    return int(m_entries.size() - 1);
}

void Totals::clear(int scope)
{
    for (std::size_t index = 0; index < m_entries.size(); ++index) {
        Entry &entry = m_entries[index];
        if (entry.scope != scope)
            continue;
        entry = { .kind = entry.kind, .scope = scope, .argument = entry.argument };
        m_values[index] = valueOf(entry);
    }
}

void Totals::takeRow(const Context &context, RowStage stage)
{
    const bool placed = stage == RowStage::Placed;
    for (std::size_t index = 0; index < m_entries.size(); ++index) {
        Entry &entry = m_entries[index];
        if ((entry.scope == pageScope || entry.scope == placedScope) != placed)
            continue;
        take(entry, entry.argument ? entry.argument->evaluate(context) : Value(packet::Decimal { 1, 0 }));
        m_values[index] = valueOf(entry);
    }
}

void Totals::take(Entry &entry, const Value &value)
{
    if (value.isNull())
        return;
    switch (entry.kind) {
    case TotalKind::Count:
        ++entry.count;
        break;
    case TotalKind::Sum:
    case TotalKind::Average:
        // Texts that are no numbers are passed over, as in the grid's footers.
        if (const auto number = value.toNumber()) {
            ++entry.count;
            entry.sum = entry.sum + *number;
        }
        break;
    case TotalKind::Least:
    case TotalKind::Greatest: {
        const bool wanted = entry.kind == TotalKind::Least ? value.compare(entry.extreme) < 0 : value.compare(entry.extreme) > 0;
        if (entry.count++ == 0 || wanted)
            entry.extreme = value;
        break;
    }
    }
}

Value Totals::valueOf(const Entry &entry)
{
    switch (entry.kind) {
    case TotalKind::Count:
        return packet::Decimal { entry.count, 0 };
    case TotalKind::Sum:
        return entry.sum;
    case TotalKind::Average:
        return entry.count == 0 ? Value() : Value(quotient(entry.sum, { entry.count, 0 }));
    default:
        return entry.extreme;
    }
}

} // namespace report
