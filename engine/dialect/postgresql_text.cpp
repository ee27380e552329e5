#include "engine/dialect/dialect.h"
#include "engine/dialect/dialect_writer.h"

#include <algorithm>
#include <limits>

namespace engine {

namespace {

using gate::Construct;

/// Functions that mean the same in PostgreSQL. All others are those of oracle.sql.
constexpr std::string_view ownFunctions[] = { "ABS", "AVG", "COALESCE", "COUNT", "LOWER", "MAX", "MIN", "NULLIF", "SUM", "UPPER" };

std::string functionName(std::string_view name)
{
    const bool own = std::binary_search(std::begin(ownFunctions), std::end(ownFunctions), gate::upperCase(name));
    return own ? std::string(name) : "kelvara." + std::string(name);
}

/// A name in quotes. Oracle stores names without quotes in capitals, PostgreSQL in small letters.
std::string quoted(std::string_view name)
{
    std::string lower(name);
    std::transform(
        lower.begin(), lower.end(), lower.begin(), [](char letter) { return letter >= 'A' && letter <= 'Z' ? char(letter + 32) : letter; });
    return lower.front() == '"' ? lower : '"' + lower + '"';
}

/// PostgreSQL computes nothing else before a subquery with an offset has given its rows.
void writeTable(DialectWriter &writer, const gate::Annotation &annotation, const gate::Reading &reading)
{
    const gate::RowRule &rule = reading.rules[std::size_t(annotation.limit)];
    const std::string condition
        = postgresqlText(rule.condition.text, rule.condition.annotations, std::numeric_limits<std::int64_t>::max(), &reading);
    const std::string_view last = reading.order == gate::RuleOrder::First ? " offset 0" : "";
    writer.writeTable(annotation, rule, quoted(rule.table), last, condition);
}

void write(DialectWriter &writer, const gate::Annotation &annotation, const gate::Reading *reading)
{
    switch (annotation.construct) {
    case Construct::Concat:
        return writer.wrap(annotation, "nullif(concat(kelvara.oracle_text(", "))::kelvara.varchar2,'')");
    case Construct::ConcatSign:
        return writer.replace(annotation, "),kelvara.oracle_text(");
    case Construct::FunctionName:
        return writer.replace(annotation, functionName(writer.partOf(annotation)));
    case Construct::Sysdate:
        return writer.replace(annotation, "localtimestamp(0)");
    case Construct::ReservedName:
    case Construct::QuotedName:
        return writer.replace(annotation, quoted(writer.partOf(annotation)));
    case Construct::IntersectedArms:
        return writer.wrap(annotation, "(", ")");
    case Construct::LikePattern:
        return writer.close(annotation.end, " escape ''");
    case Construct::UnnamedTable:
        return writer.close(annotation.end, " as unnamed" + std::to_string(annotation.begin));
    case Construct::LimitedArm:
        return writer.wrap(annotation, "select * from (", " limit " + std::to_string(annotation.limit) + ") as limited");
    case Construct::RuledTable:
        return writeTable(writer, annotation, *reading);
    default:
        // Nulls lie where Oracle puts them; a scalar subquery with a second row is an error here too.
        return writer.writeCommon(annotation);
    }
}

} // namespace

std::string postgresqlText(
    std::string_view sql, const std::vector<gate::Annotation> &annotations, std::int64_t rowLimit, const gate::Reading *reading)
{
    DialectWriter writer(sql, "kelvara.", reading);
    for (const gate::Annotation &annotation : annotations)
        write(writer, annotation, reading);
    if (rowLimit == std::numeric_limits<std::int64_t>::max())
        return writer.text();
    // The statement may end with a comment.
    return "select * from (" + writer.text() + "\n) as first_rows limit " + std::to_string(rowLimit + 1);
}

} // namespace engine
