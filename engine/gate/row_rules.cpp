#include "engine/gate/row_rules.h"

#include <algorithm>

namespace engine::gate {

namespace {

constexpr std::size_t wordsAround = 8; ///< select, from, where, parentheses, an alias

[[noreturn]] void fail(const TableRule &rule, const std::string &reason)
{
    const std::string place = rule.place.empty() ? "" : "（" + rule.place + "）";
    throw Error(Failure::Unavailable, "表 " + rule.table + " 的行规则" + place + "不能用：" + reason + "；请改正配置后重新启动");
}

std::string quotedName(std::string_view name)
{
    std::string quoted = "\"";
    for (const char character : name)
        quoted.append(character == '"' ? 2 : 1, character);
    return quoted + '"';
}

/// Null of the column's own type where it is no text.
std::string maskOf(const std::string &column, bool isText) { return isText ? "'***'" : "nullif(" + column + "," + column + ")"; }

} // namespace

RowRules::RowRules(const std::vector<TableRule> &rules, const Schema &schema)
{
    for (const TableRule &rule : rules)
        add(rule, schema);
}

void RowRules::add(const TableRule &rule, const Schema &schema)
{
    const auto table = schema.find(rule.table);
    if (table == schema.end())
        fail(rule, "没有这个表，或它不在允许查询的表之列");
    RowRule &added = ruleOf(table->first, schema);
    for (const std::string &column : rule.hidden) {
        if (!table->second.contains(column))
            fail(rule, "表中没有“" + column + "”这一列");
        added.hidden.push_back(column);
    }
    if (rule.condition.empty())
        return;
    if (!added.condition.text.empty())
        fail(rule, "这个表已经有一条行规则，请用 and 或 or 写成一条");
    try {
        added.condition = readCondition(rule.condition, table->first, schema);
    } catch (const Error &error) {
        fail(rule, error.what());
    }
}

RowRule &RowRules::ruleOf(const std::string &table, const Schema &schema)
{
    const auto [found, isNew] = m_numbers.emplace(table, m_rules.size());
    if (isNew) {
        m_rules.push_back({ .table = upperCase(table) });
        hide(found->second, {}, schema);
    }
    return m_rules[found->second];
}

std::optional<std::size_t> RowRules::numberOf(std::string_view table) const
{
    const auto found = m_numbers.find(table);
    return found == m_numbers.end() ? std::nullopt : std::optional(found->second);
}

void RowRules::hide(std::size_t number, const std::vector<bool> &areTexts, const Schema &schema)
{
    RowRule &rule = m_rules[number];
    rule.columns.clear();
    for (const std::string &name : schema.find(rule.table)->second.names()) {
        const std::string column = quotedName(name);
        const auto hidden = std::find_if(
            rule.hidden.begin(), rule.hidden.end(), [&name](const std::string &candidate) { return NameEqual()(candidate, name); });
        const auto position = std::size_t(hidden - rule.hidden.begin());
        rule.columns += rule.columns.empty() ? "" : ",";
        rule.columns += position < areTexts.size() ? maskOf(column, areTexts[position]) + " as " + column : column;
    }
}

Reading::Reading(const RowRules &given, const Reader &whom)
    : rules(given)
    , reader(whom)
{
    if (!reader.fault().empty())
        throw Error(Failure::Refused, reader.fault());
}

std::size_t Reading::wordsOf(std::size_t rule) const
{
    const Condition &condition = rules[rule].condition;
    return wordsAround + condition.words + condition.siteLists * 2 * reader.siteCount();
}

} // namespace engine::gate
