#include "engine/dialect/dialect.h"
#include "engine/dialect/dialect_writer.h"

namespace engine {

namespace {

using gate::Construct;

/// "X in (:sites)", the whole test again for every list.
void writeSites(DialectWriter &writer, std::string_view sql, const gate::Annotation &annotation, const gate::Reading &reading)
{
    if (reading.reader.sites().size() == 1)
        return writer.writeValue(annotation);
    const auto test = std::size_t(annotation.limit);
    const std::string_view before = sql.substr(test, annotation.begin - test);
    std::string lists;
    for (const std::string &sites : reading.reader.sites()) {
        if (!lists.empty())
            lists.append(" or ").append(before);
        lists.append("(").append(sites).append(")");
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
    DialectWriter writer(sql, "", reading);
    for (const gate::Annotation &annotation : annotations) {
        if (annotation.construct == Construct::RuledTable)
            writeTable(writer, annotation, *reading);
        else if (annotation.construct == Construct::SiteList)
            writeSites(writer, sql, annotation, *reading);
        else if (annotation.construct == Construct::OwnSite || annotation.construct == Construct::Employee)
            writer.writeValue(annotation);
    }
    return writer.text();
}

} // namespace engine
