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

void write(DialectWriter &writer, const gate::Annotation &annotation)
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
    default:
        return writer.writeCommon(annotation);
    }
}

} // namespace

std::string sqliteText(std::string_view sql, const std::vector<gate::Annotation> &annotations)
{
    DialectWriter writer(sql, "");
    for (const gate::Annotation &annotation : annotations)
        write(writer, annotation);
    return writer.text();
}

} // namespace engine
