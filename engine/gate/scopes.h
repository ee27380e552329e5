#pragma once

#include "engine/gate/schema.h"

#include <cstdint>
#include <vector>

namespace engine::gate {

/// The blocks of a statement with their tables and columns, and every name of a column that it uses. The parser records them. A
/// name may stand before the table it belongs to, so resolve() looks the names up when the whole statement has been read.
class Scopes {
public:
    using Number = std::uint32_t; ///< of a scope: one select block
    static constexpr Number none = ~Number(0);

    /// Where a name stands: in a sorting or grouping key the columns of the result count before those of the tables.
    enum class Clause : std::uint8_t { Expression, Key };

    struct Use {
        std::string_view qualifier; ///< before the dot; empty: none
        std::string_view name;
        std::uint32_t position; ///< of its first byte in the statement
        Number scope;
        Clause clause;
    };

    Scopes() { m_uses.reserve(64); }

    /// A block whose names may belong to the tables of `parent` too.
    Number open(Number parent);
    /// `copied`: databases may put its columns' expressions wherever the enclosing block names them.
    void close(Number scope, bool copied) { m_scopes[scope].copied = copied; }
    Number parentOf(Number scope) const { return scope == none ? none : m_scopes[scope].parent; }
    Number next() const { return Number(m_scopes.size()); }
    /// Another select of a set operation that `first` begins.
    void addArm(Number first, Number arm) { m_scopes[first].arms.push_back(arm); }

    /// A table in the from clause, under its alias or name. Throws Refusal when there are too many of them.
    void addTable(Number scope, std::string_view alias, const ColumnSet &columns, std::uint32_t position);
    void addDerived(Number scope, std::string_view alias, Number derived, std::uint32_t position);

    /// What is used from here on belongs to the next column of the result, until addColumn.
    std::uint32_t usesSoFar() const { return std::uint32_t(m_uses.size()); }
    void addColumn(Number scope, std::string_view name, std::uint32_t firstUse, std::size_t tokens);
    /// `*`, or with the qualifier all columns of one table.
    void addStar(Number scope, std::string_view qualifier, std::uint32_t position);
    void use(const Use &use) { m_uses.push_back(use); }

    /// Finds what every name means. Throws Refusal for a name that is no column, and when the columns of subqueries, put in place of
    /// their names, would make the statement too large. `tokens`: of the whole statement.
    void resolve(std::size_t tokens);

private:
    struct Source {
        std::string_view alias;
        const ColumnSet *columns; ///< null: a subquery
        Number derived;
        bool starred = false; ///< a star of its block brings its columns
    };
    struct Column {
        std::string_view name; ///< empty: it has none
        std::uint32_t firstUse = 0;
        std::uint32_t lastUse = 0;
        std::uint32_t tokens = 0;
        std::uint32_t size = 0; ///< in tokens, when written out; 0: not yet known
        std::uint32_t position = 0; ///< of a star
        bool star = false; ///< `name` is its qualifier
    };
    struct Scope {
        Number parent;
        bool copied = true;
        bool indexed = false;
        std::vector<Source> sources {};
        std::vector<Column> columns {};
        std::vector<Number> arms {};
        std::unordered_map<std::string_view, std::uint32_t, NameHash, NameEqual> index {}; ///< of many columns
        std::uint32_t largestOfArms = 0;
    };
    struct Found {
        bool found = false;
        Column *column = nullptr; ///< of a subquery; null: of a table
        Scope *scope = nullptr;
    };

    void addSource(Number scope, const Source &source, std::uint32_t position);
    static void spread(Scope &scope);
    Found columnOf(const Use &use);
    Found columnOfScope(Scope &scope, const Use &use);
    Found columnOfSource(const Source &source, std::string_view name);
    Found outputOf(Scope &scope, std::string_view name);
    Column *namedColumn(Scope &scope, std::string_view name);
    const Source *sourceNamed(const Scope &scope, std::string_view alias) const;
    std::uint32_t sizeOf(const Found &found);
    std::uint32_t sizeOf(Scope &scope, Column &column);
    std::uint32_t sizeOfStar(const Scope &scope, const Column &star);
    void checkSize(std::size_t tokens);
    std::uint32_t largestOf(Scope &scope);
    [[noreturn]] void refuse(const Use &use) const;

    std::vector<Scope> m_scopes;
    std::vector<Use> m_uses;
    std::vector<Found> m_found; ///< for each use
};

} // namespace engine::gate
