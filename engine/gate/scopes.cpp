#include "engine/gate/scopes.h"

#include "engine/gate/lexer.h"

#include <algorithm>

namespace engine::gate {

namespace {

constexpr std::size_t mostTables = 64; ///< of one from clause; SQLite joins no more
constexpr std::size_t mostVisible = 256; ///< with those of the enclosing blocks, so that a name is found quickly
constexpr std::uint32_t largestWritten = 100'000; ///< tokens
constexpr std::size_t fewColumns = 12; ///< so few are searched one by one

std::uint32_t sumOf(std::uint32_t left, std::uint32_t right) { return std::min(left + right, largestWritten + 1); }

std::string quoted(std::string_view name) { return "“" + std::string(name) + "”"; }

} // namespace

Scopes::Number Scopes::open(Number parent)
{
    m_scopes.push_back({ .parent = parent });
    return Number(m_scopes.size() - 1);
}

void Scopes::addTable(Number scope, std::string_view alias, const ColumnSet &columns, std::uint32_t position)
{
    addSource(scope, { alias, &columns, none }, position);
}

void Scopes::addDerived(Number scope, std::string_view alias, Number derived, std::uint32_t position)
{
    addSource(scope, { alias, nullptr, derived }, position);
}

void Scopes::addSource(Number scope, const Source &source, std::uint32_t position)
{
    std::vector<Source> &sources = m_scopes[scope].sources;
    if (sources.size() == mostTables)
        throw Refusal(position, "的表太多，一个 from 后最多 " + std::to_string(mostTables) + " 个表");
    sources.push_back(source);
}

void Scopes::addColumn(Number scope, std::string_view name, std::uint32_t firstUse, std::size_t tokens)
{
    m_scopes[scope].columns.push_back(
        { .name = name, .firstUse = firstUse, .lastUse = usesSoFar(), .tokens = std::min(std::uint32_t(tokens), largestWritten + 1) });
}

void Scopes::addStar(Number scope, std::string_view qualifier, std::uint32_t position)
{
    m_scopes[scope].columns.push_back({ .name = qualifier, .tokens = 1, .position = position, .star = true });
}

void Scopes::resolve(std::size_t tokens)
{
    std::vector<std::size_t> visible;
    for (Scope &scope : m_scopes) {
        visible.push_back(scope.sources.size() + (scope.parent == none ? 0 : visible[scope.parent]));
        spread(scope);
    }
    m_found.reserve(m_uses.size());
    for (const Use &use : m_uses) {
        if (visible[use.scope] > mostVisible)
            throw Refusal(use.position, "处各层查询的表太多，最多 " + std::to_string(mostVisible) + " 个");
        m_found.push_back(columnOf(use));
        if (!m_found.back().found)
            refuse(use);
    }
    checkSize(tokens);
}

/// Finds the tables of its stars.
void Scopes::spread(Scope &scope)
{
    for (const Column &column : scope.columns) {
        bool known = !column.star || column.name.empty();
        for (Source &source : scope.sources) {
            if (!column.star || (!column.name.empty() && !NameEqual()(source.alias, column.name)))
                continue;
            source.starred = true;
            known = true;
        }
        if (!known)
            throw Refusal(column.position, "的" + quoted(column.name) + "不是 from 中的表名或别名");
    }
}

void Scopes::checkSize(std::size_t tokens)
{
    auto total = std::uint32_t(std::min<std::size_t>(tokens, largestWritten));
    const auto add = [&total](std::uint32_t size, std::uint32_t position) {
        total = sumOf(total, size - 1);
        if (total > largestWritten)
            throw Refusal(position, "的列逐层展开后，语句超过 " + std::to_string(largestWritten) + " 项，请减少子查询的层数或列的重复使用");
    };
    for (std::size_t number = 0; number < m_uses.size(); ++number)
        add(sizeOf(m_found[number]), m_uses[number].position);
    for (Scope &scope : m_scopes) {
        for (Column &column : scope.columns) {
            if (column.star)
                add(sizeOf(scope, column), column.position);
        }
    }
}

/// The column of the innermost block that has one of this name.
Scopes::Found Scopes::columnOf(const Use &use)
{
    for (Number number = use.scope; number != none; number = m_scopes[number].parent) {
        Scope &scope = m_scopes[number];
        const bool ownKey = number == use.scope && use.clause == Clause::Key && use.qualifier.empty();
        // Elsewhere in a key the name of a table could be read as its whole row.
        if (Column *const column = ownKey && !sourceNamed(scope, use.name) ? namedColumn(scope, use.name) : nullptr)
            return { true, column, &scope };
        if (const Found found = columnOfScope(scope, use); found.found)
            return found;
        if (!use.qualifier.empty() && sourceNamed(scope, use.qualifier))
            break;
    }
    return {};
}

Scopes::Found Scopes::columnOfScope(Scope &scope, const Use &use)
{
    for (const Source &source : scope.sources) {
        if (!use.qualifier.empty() && !NameEqual()(source.alias, use.qualifier))
            continue;
        if (const Found found = columnOfSource(source, use.name); found.found)
            return found;
    }
    return {};
}

Scopes::Found Scopes::columnOfSource(const Source &source, std::string_view name)
{
    if (source.columns)
        return { source.columns->contains(name) };
    return outputOf(m_scopes[source.derived], name);
}

/// What a subquery has under this name.
Scopes::Found Scopes::outputOf(Scope &scope, std::string_view name)
{
    if (Column *const column = namedColumn(scope, name))
        return { true, column, &scope };
    for (const Source &source : scope.sources) {
        if (!source.starred)
            continue;
        if (const Found found = columnOfSource(source, name); found.found)
            return found;
    }
    return {};
}

Scopes::Column *Scopes::namedColumn(Scope &scope, std::string_view name)
{
    if (scope.columns.size() <= fewColumns) {
        const auto isNamed = [name](const Column &column) { return !column.star && NameEqual()(column.name, name); };
        const auto found = std::find_if(scope.columns.begin(), scope.columns.end(), isNamed);
        return found == scope.columns.end() ? nullptr : &*found;
    }
    if (!scope.indexed) {
        for (std::size_t number = 0; number < scope.columns.size(); ++number) {
            if (!scope.columns[number].star)
                scope.index.emplace(scope.columns[number].name, number);
        }
        scope.indexed = true;
    }
    const auto found = scope.index.find(name);
    return found == scope.index.end() ? nullptr : &scope.columns[found->second];
}

const Scopes::Source *Scopes::sourceNamed(const Scope &scope, std::string_view alias) const
{
    const auto isNamed = [alias](const Source &source) { return NameEqual()(source.alias, alias); };
    const auto found = std::find_if(scope.sources.begin(), scope.sources.end(), isNamed);
    return found == scope.sources.end() ? nullptr : &*found;
}

/// The tokens that may come to stand in place of a name.
std::uint32_t Scopes::sizeOf(const Found &found)
{
    if (!found.column || !found.scope->copied)
        return 1;
    return std::max(sizeOf(*found.scope, *found.column), largestOf(*found.scope));
}

std::uint32_t Scopes::sizeOf(Scope &scope, Column &column)
{
    if (column.size > 0)
        return column.size;
    std::uint32_t size = column.star ? sizeOfStar(scope, column) : column.tokens;
    for (std::uint32_t use = column.firstUse; use < column.lastUse; ++use)
        size = sumOf(size, sizeOf(m_found[use]) - 1);
    return column.size = std::max(size, 1u);
}

/// A star is written out as every column that it stands for.
std::uint32_t Scopes::sizeOfStar(const Scope &scope, const Column &star)
{
    std::uint32_t size = 0;
    for (const Source &source : scope.sources) {
        if (!star.name.empty() && !NameEqual()(source.alias, star.name))
            continue;
        if (source.columns) {
            size = sumOf(size, std::uint32_t(source.columns->size()));
            continue;
        }
        Scope &derived = m_scopes[source.derived];
        for (Column &column : derived.columns)
            size = sumOf(size, derived.copied || column.star ? sizeOf(derived, column) : 1);
    }
    return size;
}

/// The largest column of the other selects of a set operation.
std::uint32_t Scopes::largestOf(Scope &scope)
{
    for (; !scope.arms.empty(); scope.arms.pop_back()) {
        Scope &arm = m_scopes[scope.arms.back()];
        for (Column &column : arm.columns)
            scope.largestOfArms = std::max(scope.largestOfArms, sizeOf(arm, column));
    }
    return scope.largestOfArms;
}

void Scopes::refuse(const Use &use) const
{
    const Scope &scope = m_scopes[use.scope];
    if (use.qualifier.empty()) {
        const bool alone = scope.sources.size() == 1 && !scope.sources.front().alias.empty();
        const std::string owner = alone ? quoted(scope.sources.front().alias) : std::string("from 中的表都");
        throw Refusal(use.position, "有误：" + owner + "没有" + quoted(use.name) + "这一列");
    }
    for (Number number = use.scope; number != none; number = m_scopes[number].parent) {
        if (sourceNamed(m_scopes[number], use.qualifier))
            throw Refusal(use.position, "有误：" + quoted(use.qualifier) + "没有" + quoted(use.name) + "这一列");
    }
    throw Refusal(use.position, "有误：" + quoted(use.qualifier) + "不是 from 中的表名或别名");
}

} // namespace engine::gate
