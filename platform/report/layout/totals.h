#pragma once

#include "platform/report/definition/expression.h"

#include <vector>

namespace report {

/// The rows that a total runs over: those of the report, of the page, all that are placed so far, or those of a group, counted from
/// the outermost.
constexpr int reportScope = 0;
constexpr int pageScope = 1;
constexpr int placedScope = 2;
constexpr int firstGroupScope = 3;

enum class RowStage { BeforeLayout, Placed };

/// All totals of a report, exact.
class Totals {
public:
    /// Returns the number of the total; the argument must outlive it.
    int add(const TotalCall &call, int scope);
    void clear(int scope);
    /// A row is taken into the totals of report and groups before it is laid out, and into those of the page once it is placed.
    void takeRow(const Context &context, RowStage stage);
    /// By number, for Context::totals.
    const std::vector<Value> &values() const { return m_values; }

private:
    struct Entry {
        TotalKind kind;
        int scope;
        const Expression *argument;
        qint64 count = 0; ///< values that are not null
        packet::Decimal sum {};
        Value extreme {};
    };
    void take(Entry &entry, const Value &value);
    static Value valueOf(const Entry &entry);

    std::vector<Entry> m_entries;
    std::vector<Value> m_values;
};

} // namespace report
