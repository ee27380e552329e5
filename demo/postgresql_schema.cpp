#include "demo/postgresql_schema.h"

#include "demo/text.h"

#include <algorithm>
#include <chrono>

namespace demo {
namespace {

using Month = std::chrono::year_month;

/// A table that grows all day is looked after before a fifth of it is new, and its sites are counted more finely: the busiest has a
/// hundred times the scans of a small one.
constexpr std::string_view upkeep
    = " with (autovacuum_vacuum_insert_scale_factor = 0.02, autovacuum_vacuum_scale_factor = 0.02, autovacuum_analyze_scale_factor = 0.02)";
constexpr std::string_view finerStatistics = " alter column SCAN_SITE set statistics 1000";

constexpr std::string_view create = "CREATE TABLE ";

Month monthOf(Moment moment)
{
    const std::chrono::year_month_day date { std::chrono::sys_days(std::chrono::days(moment / day)) };
    return date.year() / date.month();
}

/// "202603" or, with a sign between, "2026-03".
std::string textOf(Month month, std::string_view sign = "")
{
    return numbered(std::to_string(int(month.year())) + std::string(sign), unsigned(month.month()), 2);
}

std::size_t beginOf(const std::string &types, const std::string &table) { return types.find(std::string(create) + table + " "); }
std::size_t endOf(const std::string &types, const std::string &table) { return types.find(");\n", beginOf(types, table)); }

bool isOfScans(const std::string &types, const std::string &table)
{
    const auto column = types.find(" SCAN_DATE ", beginOf(types, table));
    return column < endOf(types, table);
}

/// Every table of a script with what `tail` puts behind its last parenthesis.
template <class Tail>
std::string withTables(const std::string &types, const Tail &tail)
{
    std::string text;
    std::size_t copied = 0;
    for (const std::string &table : tablesOf(types)) {
        const auto end = endOf(types, table) + 1;
        text.append(types, copied, end - copied) += tail(table);
        copied = end + 1; // the semicolon
    }
    return text.append(types, copied);
}

std::string partsOf(const std::string &table, Month first, Month last)
{
    std::string text = "\nalter table " + table + std::string(finerStatistics) + ";\n";
    const auto addPart = [&](const std::string &name, const std::string &values) {
        text += "create table " + table + "_" + name + " partition of " + table + values + std::string(upkeep) + ";\n";
    };
    for (Month month = first; month <= last; month += std::chrono::months(1)) {
        const Month next = month + std::chrono::months(1);
        addPart(textOf(month), " for values from ('" + textOf(month, "-") + "-01') to ('" + textOf(next, "-") + "-01')");
    }
    addPart("REST", " default");
    return text;
}

} // namespace

std::string postgresqlTypes(std::string_view script)
{
    constexpr std::string_view wordCharacters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_";
    std::string text;
    while (!script.empty()) {
        const auto gap = std::min(script.find_first_of(wordCharacters), script.size());
        text += script.substr(0, gap);
        script.remove_prefix(gap);
        const auto end = std::min(script.find_first_not_of(wordCharacters), script.size());
        const auto word = script.substr(0, end);
        script.remove_prefix(end);
        text += word == "VARCHAR2" ? "varchar" : word == "NUMBER" ? "numeric" : word == "DATE" ? "timestamp(0)" : word;
    }
    return text;
}

std::vector<std::string> tablesOf(std::string_view script)
{
    std::vector<std::string> names;
    for (auto found = script.find(create); found != std::string_view::npos; found = script.find(create, found + 1)) {
        const auto begin = found + create.size();
        names.emplace_back(script.substr(begin, script.find(' ', begin) - begin));
    }
    return names;
}

std::string postgresqlTables(std::string_view script)
{
    const std::string types = postgresqlTypes(script);
    return withTables(types, [&](const std::string &table) {
        return std::string(upkeep) + ";\n" + (isOfScans(types, table) ? "alter table " + table + std::string(finerStatistics) + ";\n" : "");
    });
}

std::string monthlyTables(std::string_view script, Moment first, Moment last)
{
    const std::string types = postgresqlTypes(script);
    return withTables(types, [&](const std::string &table) {
        if (!isOfScans(types, table))
            return std::string(upkeep) + ";\n";
        return " partition by range (SCAN_DATE);" + partsOf(table, monthOf(first), monthOf(last) + std::chrono::months(1));
    });
}

} // namespace demo
