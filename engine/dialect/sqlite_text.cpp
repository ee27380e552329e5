#include "engine/dialect/dialect.h"

#include "engine/dialect/dialect_writer.h"

namespace engine {

namespace {

using gate::Construct;

std::string functionName(std::string_view name)
{
    // SQLite computes ifnull in line, without a call.
    return gate::upperCase(name) == "NVL" ? "ifnull" : std::string(name);
}

/// A number as it is written, such as 100 or 1.5, that is not zero.
bool isPlainNumber(std::string_view text)
{
    return text.find_first_not_of("0123456789.") == std::string_view::npos && text.find_first_not_of("0.") != std::string_view::npos;
}

/// SQLite computes nothing else before a subquery with a limit has given its rows.
void writeTable(DialectWriter &writer, const gate::Annotation &annotation, const gate::Reading &reading)
{
    const gate::RowRule &rule = reading.rules[std::size_t(annotation.limit)];
    const std::string condition = sqliteText(rule.condition.text, rule.condition.annotations, &reading);
    const std::string_view last = reading.order == gate::RuleOrder::First ? " limit -1" : "";
    writer.writeTable(annotation, rule, '"' + rule.table + '"', last, condition);
}

void write(DialectWriter &writer, const gate::Annotation &annotation, const gate::Reading *reading)
{
    switch (annotation.construct) {
    case Construct::Concat:
        return writer.wrap(annotation, "oracle_concat(", ")");
    case Construct::ConcatSign:
        return writer.replace(annotation, ",");
    case Construct::FunctionName:
        return writer.replace(annotation, functionName(writer.partOf(annotation)));
    case Construct::Sysdate:
        return writer.replace(annotation, "datetime('now','localtime')");
    case Construct::ReservedName:
        return writer.wrap(annotation, "\"", "\"");
    case Construct::Divisor:
        if (!isPlainNumber(writer.partOf(annotation)))
            writer.wrap(annotation, "oracle_divisor(", ")");
        return;
    case Construct::SortKey:
        return writer.close(annotation.end, " nulls last");
    case Construct::SortKeyDescending:
        return writer.close(annotation.end, " nulls first");
    case Construct::SingleValue:
        return writer.wrap(annotation, "oracle_single(", ")");
    case Construct::LimitedArm:
        return writer.wrap(annotation, "select * from (", " limit " + std::to_string(annotation.limit) + ")");
    case Construct::RuledTable:
        return writeTable(writer, annotation, *reading);
    default:
        return writer.writeCommon(annotation);
    }
}

} // namespace

std::string sqliteText(std::string_view sql, const std::vector<gate::Annotation> &annotations, const gate::Reading *reading)
{
    DialectWriter writer(sql, "", reading);
    for (const gate::Annotation &annotation : annotations)
        write(writer, annotation, reading);
    return writer.text();
}

} // namespace engine
