#include "engine/dialect/dialect.h"
#include "engine/dialect/dialect_writer.h"

#include <algorithm>

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

void write(DialectWriter &writer, const gate::Finding &finding)
{
    switch (finding.construct) {
    case Construct::Concat:
        return writer.wrap(finding, "nullif(concat(kelvara.oracle_text(", "))::kelvara.varchar2,'')");
    case Construct::ConcatSign:
        return writer.replace(finding, "),kelvara.oracle_text(");
    case Construct::FunctionName:
        return writer.replace(finding, functionName(writer.partOf(finding)));
    case Construct::Sysdate:
        return writer.replace(finding, "localtimestamp(0)");
    case Construct::ReservedName:
    case Construct::QuotedName:
        return writer.replace(finding, quoted(writer.partOf(finding)));
    case Construct::IntersectedArms:
        return writer.wrap(finding, "(", ")");
    case Construct::LikePattern:
        return writer.close(finding.end, " escape ''");
    case Construct::UnnamedTable:
        return writer.close(finding.end, " as unnamed" + std::to_string(finding.begin));
    case Construct::LimitedArm:
        return writer.wrap(finding, "select * from (", " limit " + std::to_string(finding.limit) + ") as limited");
    default:
        // Nulls lie where Oracle puts them; a scalar subquery with a second row is an error here too.
        return writer.writeCommon(finding);
    }
}

} // namespace

std::string postgresqlText(std::string_view sql, const std::vector<gate::Finding> &findings)
{
    DialectWriter writer(sql, "kelvara.");
    for (const gate::Finding &finding : findings)
        write(writer, finding);
    return writer.text();
}

std::string postgresqlFirstRows(const std::string &text, std::int64_t rows)
{
    // The statement may end with a comment.
    return "select * from (" + text + "\n) as first_rows limit " + std::to_string(rows);
}

} // namespace engine
