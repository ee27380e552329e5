#pragma once

#include <string_view>
#include <vector>

namespace engine {

/// A table that the statements of the screens name.
struct NeededTable {
    std::string_view name;
    std::vector<std::string_view> columns;
};

/// The tables of demo/schema.sql, in its order.
std::vector<NeededTable> neededTables();

} // namespace engine
