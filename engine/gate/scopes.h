#pragma once

#include "engine/gate/schema.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace engine::gate {

/// One select block of a statement: its tables and the columns of its result.
struct Scope {
    using Number = std::uint32_t; ///< in the order in which blocks begin
    static constexpr Number none = ~Number(0);

    struct Source {
        std::string_view alias; ///< or the table's name
        const ColumnSet *columns; ///< null: a subquery
        Number derived; ///< the first block of the subquery
        bool isStarred = false; ///< a star of the block brings its columns
    };
    struct Column {
        std::string_view name; ///< empty: it has none; of a star the qualifier
        std::uint32_t firstUse = 0; ///< the names that its expression uses
        std::uint32_t lastUse = 0;
        std::uint32_t tokens = 0;
        std::uint32_t position = 0; ///< of a star, in bytes
        bool isStar = false;
        std::uint32_t size = 0; ///< in tokens, when written out; 0: not yet known
    };

    Number parent; ///< whose tables its names may belong to as well
    bool isCopied = true; ///< databases may put its columns' expressions wherever the block around it names them
    std::vector<Source> sources {};
    std::vector<Column> columns {};
    std::vector<Number> arms {}; ///< the other selects of a set operation that it begins
};

/// Where a name stands: in a sorting or grouping key the columns of the result count before those of the tables.
enum class Clause : std::uint8_t { Expression, Key };

/// A name that stands for a column.
struct ColumnUse {
    std::string_view qualifier; ///< before the dot; empty: none
    std::string_view name;
    std::uint32_t position; ///< of its first byte in the statement
    Scope::Number scope;
    Clause clause;
};

/// What the parser records of a statement for the resolver: a name may stand before the table that it belongs to.
struct Scopes {
    Scope::Number parentOf(Scope::Number scope) const { return scope == Scope::none ? scope : blocks[scope].parent; }
    Scope::Number open(Scope::Number parent)
    {
        blocks.push_back({ .parent = parent });
        return Scope::Number(blocks.size() - 1);
    }

    std::vector<Scope> blocks {};
    std::vector<ColumnUse> uses {};
};

} // namespace engine::gate
