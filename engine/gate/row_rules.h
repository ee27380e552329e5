#pragma once

#include "engine/engine.h"
#include "engine/gate/gate.h"

#include <optional>

namespace engine::gate {

/// The rules of one table, checked against it.
struct RowRule {
    std::string table; ///< in capitals
    Condition condition {}; ///< without a text: all rows
    std::vector<std::string> hidden {}; ///< columns, as the operator writes them
    std::string columns {}; ///< what is selected of the table, every column in its order
};

class RowRules {
public:
    RowRules() = default;
    /// Throws Error(Unavailable), which names the rule and its place, when the tables have not got what a rule names.
    RowRules(const std::vector<TableRule> &rules, const Schema &schema);

    bool empty() const { return m_rules.empty(); }
    std::size_t size() const { return m_rules.size(); }
    const RowRule &operator[](std::size_t number) const { return m_rules[number]; }
    std::optional<std::size_t> numberOf(std::string_view table) const;
    /// Says which of a rule's hidden columns are texts; until then they are shown.
    void hide(std::size_t number, const std::vector<bool> &areTexts, const Schema &schema);

private:
    void add(const TableRule &rule, const Schema &schema);
    RowRule &ruleOf(const std::string &table, const Schema &schema);

    std::vector<RowRule> m_rules {};
    std::unordered_map<std::string, std::size_t, NameHash, NameEqual> m_numbers {};
};

/// Whether the conditions of rules come before all others. They may come in any order as long as nothing fails: a condition that fails
/// on a row tells of the row.
enum class RuleOrder : std::uint8_t { Any, First };

/// For whom a statement is read. Both must outlive it.
struct Reading {
    /// Throws Error(Refused) when the reader has values that cannot be used.
    Reading(const RowRules &given, const Reader &whom);
    /// How many words a rule puts in place of its table.
    std::size_t wordsOf(std::size_t rule) const;

    const RowRules &rules;
    const Reader &reader;
    RuleOrder order = RuleOrder::Any;
};

} // namespace engine::gate
