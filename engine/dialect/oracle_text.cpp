#include "engine/dialect/dialect.h"
#include "engine/dialect/dialect_writer.h"

#include <algorithm>

namespace engine {

namespace {

using gate::Construct;

constexpr std::size_t longestList = 1000; ///< Oracle takes no more values in one list

/// "X in (:sites)", the whole test again for every thousand sites.
void writeSites(DialectWriter &writer, std::string_view sql, const gate::Annotation &annotation, const gate::Reading &reading)
{
    std::span<const std::string> sites = reading.sites;
    if (sites.size() <= longestList)
        return writer.writeValue(annotation, reading);
    const auto test = std::size_t(annotation.limit);
    const std::string_view before = sql.substr(test, annotation.begin - test);
    std::string lists;
    for (; !sites.empty(); sites = sites.subspan(std::min(longestList, sites.size()))) {
        if (!lists.empty())
            lists.append(" or ").append(before);
        lists += gate::listOf(sites.first(std::min(longestList, sites.size())));
    }
    writer.open(std::uint32_t(test), "(");
    writer.replace(annotation, lists);
    writer.close(annotation.end, ")");
}

/// A condition on rownum keeps Oracle from computing others first.
void writeTable(DialectWriter &writer, const gate::Annotation &annotation, const gate::Reading &reading)
{
    const gate::RowRule &rule = reading.rules[std::size_t(annotation.limit)];
    const std::string condition = oracleText(rule.condition.text, rule.condition.annotations, &reading);
    const bool isFirst = reading.order == gate::RuleOrder::First;
    const std::string_view last = !isFirst ? "" : condition.empty() ? " where rownum>0" : " and rownum>0";
    writer.writeTable(annotation, rule, '"' + rule.table + '"', last, condition);
}

} // namespace

std::string oracleText(std::string_view sql, const std::vector<gate::Annotation> &annotations, const gate::Reading *reading)
{
    if (!reading)
        return std::string(sql);
    DialectWriter writer(sql, "");
    for (const gate::Annotation &annotation : annotations) {
        if (annotation.construct == Construct::RuledTable)
            writeTable(writer, annotation, *reading);
        else if (annotation.construct == Construct::SiteList)
            writeSites(writer, sql, annotation, *reading);
        else if (annotation.construct == Construct::OwnSite || annotation.construct == Construct::Employee)
            writer.writeValue(annotation, *reading);
    }
    return writer.text();
}

} // namespace engine
