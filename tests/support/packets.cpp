#include "tests/support/packets.h"

#include "packet/builder.h"

#include <map>

namespace {

std::vector<std::string_view> split(std::string_view text, char separator)
{
    std::vector<std::string_view> parts;
    for (std::size_t end = text.find(separator); end != text.npos; end = text.find(separator)) {
        parts.push_back(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    parts.push_back(text);
    return parts;
}

packet::Builder::Column columnOf(std::string_view head)
{
    static const std::map<std::string_view, packet::ColumnType> types {
        { "text", packet::ColumnType::Text },
        { "integer", packet::ColumnType::Int64 },
        { "decimal", packet::ColumnType::Decimal },
        { "float", packet::ColumnType::Float64 },
        { "time", packet::ColumnType::Timestamp },
    };
    const auto parts = split(head, ':');
    return { std::string(parts.at(0)), types.at(parts.at(1)) };
}

} // namespace

packet::PacketPtr packetOf(std::string_view table)
{
    auto lines = split(table, '\n');
    if (lines.back().empty())
        lines.pop_back();
    std::vector<packet::Builder::Column> columns;
    for (const std::string_view head : split(lines.at(0), ','))
        columns.push_back(columnOf(head));
    const std::size_t columnCount = columns.size();
    packet::Builder builder(std::move(columns));
    for (std::size_t line = 1; line < lines.size(); ++line) {
        const auto cells = split(lines[line], ',');
        for (std::size_t column = 0; column < columnCount; ++column)
            builder.addText(column, cells.at(column));
        builder.endRow();
    }
    return builder.finish();
}
