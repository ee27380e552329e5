#include "engine/check/needed_tables.h"

#include "engine/check/schema_text.h"

#include <algorithm>

namespace engine {
namespace {

constexpr std::string_view create = "CREATE TABLE ";

/// Takes the next line off the front, without blanks before it.
std::string_view nextLine(std::string_view &rest)
{
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    std::string_view line = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    return line;
}

std::string_view firstWord(std::string_view text) { return text.substr(0, text.find_first_of(" (,")); }

} // namespace

std::vector<NeededTable> neededTables()
{
    std::vector<NeededTable> tables;
    std::string_view rest = schemaText;
    while (!rest.empty()) {
        const std::string_view line = nextLine(rest);
        if (!line.starts_with(create))
            continue;
        NeededTable &table = tables.emplace_back(NeededTable { firstWord(line.substr(create.size())), {} });
        for (std::string_view column = nextLine(rest); !column.starts_with(")") && !rest.empty(); column = nextLine(rest)) {
            if (!column.empty() && !column.starts_with("--"))
                table.columns.push_back(firstWord(column));
        }
    }
    return tables;
}

} // namespace engine
