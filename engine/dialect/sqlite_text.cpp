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

void write(DialectWriter &writer, const gate::Finding &finding)
{
    switch (finding.construct) {
    case Construct::Concat:
        return writer.wrap(finding, "oracle_concat(", ")");
    case Construct::ConcatSign:
        return writer.replace(finding, ",");
    case Construct::FunctionName:
        return writer.replace(finding, functionName(writer.partOf(finding)));
    case Construct::Sysdate:
        return writer.replace(finding, "datetime('now','localtime')");
    case Construct::ReservedName:
        return writer.wrap(finding, "\"", "\"");
    case Construct::Divisor:
        if (!isPlainNumber(writer.partOf(finding)))
            writer.wrap(finding, "oracle_divisor(", ")");
        return;
    case Construct::SortKey:
        return writer.close(finding.end, " nulls last");
    case Construct::SortKeyDescending:
        return writer.close(finding.end, " nulls first");
    case Construct::SingleValue:
        return writer.wrap(finding, "oracle_single(", ")");
    case Construct::LimitedArm:
        return writer.wrap(finding, "select * from (", " limit " + std::to_string(finding.limit) + ")");
    default:
        return writer.writeCommon(finding);
    }
}

} // namespace

std::string sqliteText(std::string_view sql, const std::vector<gate::Finding> &findings)
{
    DialectWriter writer(sql, "");
    for (const gate::Finding &finding : findings)
        write(writer, finding);
    return writer.text();
}

std::string textFor(Dialect dialect, std::string_view sql, const std::vector<gate::Finding> &findings)
{
    switch (dialect) {
    case Dialect::Sqlite:
        return sqliteText(sql, findings);
    case Dialect::Postgresql:
        return postgresqlText(sql, findings);
    case Dialect::Oracle:
        break;
    }
    return std::string(sql);
}

} // namespace engine
