#include "engine/gate/name_resolver.h"

#include "engine/gate/lexer.h"

#include <algorithm>

namespace engine::gate {

namespace {

constexpr std::size_t mostVisible = 256; ///< tables, with those of the enclosing blocks, so that a name is found quickly
constexpr std::size_t fewColumns = 12; ///< so few are searched one by one

/// Columns that databases have in every table without listing them. As an alias such a name could be read as one of them.
constexpr std::string_view hiddenColumns[] = { "CTID", "XMIN", "XMAX", "CMIN", "CMAX", "TABLEOID", "ROWID", "OID", "_ROWID_" };

bool isHidden(std::string_view name)
{
    const auto isNamed = [name](std::string_view hidden) { return NameEqual()(hidden, name); };
    return std::any_of(std::begin(hiddenColumns), std::end(hiddenColumns), isNamed);
}

std::uint32_t sumOf(std::uint32_t left, std::uint32_t right) { return std::min(left + right, largestWritten + 1); }

std::string quoted(std::string_view name) { return "“" + std::string(name) + "”"; }

class NameResolver {
public:
    explicit NameResolver(Scopes &scopes)
        : m_blocks(scopes.blocks)
        , m_uses(scopes.uses)
        , m_indexes(scopes.blocks.size())
        , m_largestOfArms(scopes.blocks.size())
    {
    }
    void run(std::size_t tokens);

private:
    struct Found {
        bool found = false;
        Scope::Column *column = nullptr; ///< of a subquery; null: of a table
        Scope *scope = nullptr;
    };
    using Index = std::unordered_map<std::string_view, std::size_t, NameHash, NameEqual>;

    static void spread(Scope &scope);
    Found columnOf(const ColumnUse &use);
    Found columnOfScope(Scope &scope, const ColumnUse &use);
    Found columnOfSource(const Scope::Source &source, std::string_view name);
    Found outputOf(Scope &scope, std::string_view name);
    Scope::Column *namedColumn(Scope &scope, std::string_view name);
    static const Scope::Source *sourceNamed(const Scope &scope, std::string_view alias);
    void checkSize(std::size_t tokens);
    std::uint32_t sizeOf(const Found &found);
    std::uint32_t sizeOf(Scope &scope, Scope::Column &column);
    std::uint32_t sizeOfStar(const Scope &scope, const Scope::Column &star);
    std::uint32_t largestOf(Scope &scope);
    [[noreturn]] void refuse(const ColumnUse &use) const;
    std::size_t numberOf(const Scope &scope) const { return std::size_t(&scope - m_blocks.data()); }

    std::vector<Scope> &m_blocks;
    const std::vector<ColumnUse> &m_uses;
    std::vector<Index> m_indexes; ///< of blocks with many columns; empty: not yet made
    std::vector<std::uint32_t> m_largestOfArms;
    std::vector<Found> m_found {}; ///< for each use
};

void NameResolver::run(std::size_t tokens)
{
    std::vector<std::size_t> visible;
    for (Scope &scope : m_blocks) {
        visible.push_back(scope.sources.size() + (scope.parent == Scope::none ? 0 : visible[scope.parent]));
        spread(scope);
    }
    m_found.reserve(m_uses.size());
    for (const ColumnUse &use : m_uses) {
        if (visible[use.scope] > mostVisible)
            throw Refusal(use.position, "处各层查询的表太多，最多 " + std::to_string(mostVisible) + " 个");
        const Found &found = m_found.emplace_back(columnOf(use));
        if (!found.found || (found.column && isHidden(use.name)))
            refuse(use);
    }
    checkSize(tokens);
}

/// Finds the tables of its stars.
void NameResolver::spread(Scope &scope)
{
    for (const Scope::Column &column : scope.columns) {
        bool known = !column.isStar || column.name.empty();
        for (Scope::Source &source : scope.sources) {
            if (!column.isStar || (!column.name.empty() && !NameEqual()(source.alias, column.name)))
                continue;
            source.isStarred = true;
            known = true;
        }
        if (!known)
            throw Refusal(column.position, "的" + quoted(column.name) + "不是 from 中的表名或别名");
    }
}

void NameResolver::checkSize(std::size_t tokens)
{
    auto total = std::uint32_t(std::min<std::size_t>(tokens, largestWritten));
    const auto add = [&total](std::uint32_t size, std::uint32_t position) {
        total = sumOf(total, size - 1);
        if (total > largestWritten)
            throw Refusal(position, "的列逐层展开后，语句超过 " + std::to_string(largestWritten) + " 项，请减少子查询的层数或列的重复使用");
    };
    for (std::size_t number = 0; number < m_uses.size(); ++number)
        add(sizeOf(m_found[number]), m_uses[number].position);
    for (Scope &scope : m_blocks) {
        for (Scope::Column &column : scope.columns) {
            if (column.isStar)
                add(sizeOf(scope, column), column.position);
        }
    }
}

/// The column of the innermost block that has one of this name.
NameResolver::Found NameResolver::columnOf(const ColumnUse &use)
{
    for (Scope::Number number = use.scope; number != Scope::none; number = m_blocks[number].parent) {
        Scope &scope = m_blocks[number];
        const bool ownKey = number == use.scope && use.clause == Clause::Key && use.qualifier.empty();
        // Elsewhere in a key the name of a table could be read as its whole row.
        if (Scope::Column *const column = ownKey && !sourceNamed(scope, use.name) ? namedColumn(scope, use.name) : nullptr)
            return { true, column, &scope };
        if (const Found found = columnOfScope(scope, use); found.found)
            return found;
        if (!use.qualifier.empty() && sourceNamed(scope, use.qualifier))
            break;
    }
    return {};
}

NameResolver::Found NameResolver::columnOfScope(Scope &scope, const ColumnUse &use)
{
    for (const Scope::Source &source : scope.sources) {
        if (!use.qualifier.empty() && !NameEqual()(source.alias, use.qualifier))
            continue;
        if (const Found found = columnOfSource(source, use.name); found.found)
            return found;
    }
    return {};
}

NameResolver::Found NameResolver::columnOfSource(const Scope::Source &source, std::string_view name)
{
    if (source.columns)
        return { source.columns->contains(name) };
    return outputOf(m_blocks[source.derived], name);
}

/// What a subquery has under this name.
NameResolver::Found NameResolver::outputOf(Scope &scope, std::string_view name)
{
    if (Scope::Column *const column = namedColumn(scope, name))
        return { true, column, &scope };
    for (const Scope::Source &source : scope.sources) {
        if (!source.isStarred)
            continue;
        if (const Found found = columnOfSource(source, name); found.found)
            return found;
    }
    return {};
}

Scope::Column *NameResolver::namedColumn(Scope &scope, std::string_view name)
{
    if (scope.columns.size() <= fewColumns) {
        const auto isNamed = [name](const Scope::Column &column) { return !column.isStar && NameEqual()(column.name, name); };
        const auto found = std::find_if(scope.columns.begin(), scope.columns.end(), isNamed);
        return found == scope.columns.end() ? nullptr : &*found;
    }
    Index &index = m_indexes[numberOf(scope)];
    if (index.empty()) {
        for (std::size_t number = 0; number < scope.columns.size(); ++number) {
            if (!scope.columns[number].isStar)
                index.emplace(scope.columns[number].name, number);
        }
        // Stars alone leave it empty no more.
        index.emplace(std::string_view(), 0);
    }
    const auto found = index.find(name);
    return found == index.end() ? nullptr : &scope.columns[found->second];
}

const Scope::Source *NameResolver::sourceNamed(const Scope &scope, std::string_view alias)
{
    const auto isNamed = [alias](const Scope::Source &source) { return NameEqual()(source.alias, alias); };
    const auto found = std::find_if(scope.sources.begin(), scope.sources.end(), isNamed);
    return found == scope.sources.end() ? nullptr : &*found;
}

/// The tokens that may come to stand in place of a name.
std::uint32_t NameResolver::sizeOf(const Found &found)
{
    if (!found.column || !found.scope->isCopied)
        return 1;
    return std::max(sizeOf(*found.scope, *found.column), largestOf(*found.scope));
}

std::uint32_t NameResolver::sizeOf(Scope &scope, Scope::Column &column)
{
    if (column.size > 0)
        return column.size;
    std::uint32_t size = column.isStar ? sizeOfStar(scope, column) : column.tokens;
    for (std::uint32_t use = column.firstUse; use < column.lastUse; ++use)
        size = sumOf(size, sizeOf(m_found[use]) - 1);
    return column.size = std::max(size, 1u);
}

/// A star is written out as every column that it stands for.
std::uint32_t NameResolver::sizeOfStar(const Scope &scope, const Scope::Column &star)
{
    std::uint32_t size = 0;
    for (const Scope::Source &source : scope.sources) {
        if (!star.name.empty() && !NameEqual()(source.alias, star.name))
            continue;
        if (source.columns) {
            size = sumOf(size, std::uint32_t(source.columns->size()));
            continue;
        }
        Scope &derived = m_blocks[source.derived];
        for (Scope::Column &column : derived.columns)
            size = sumOf(size, derived.isCopied || column.isStar ? sizeOf(derived, column) : 1);
    }
    return size;
}

/// The largest column of the other selects of a set operation.
std::uint32_t NameResolver::largestOf(Scope &scope)
{
    for (; !scope.arms.empty(); scope.arms.pop_back()) {
        Scope &arm = m_blocks[scope.arms.back()];
        for (Scope::Column &column : arm.columns)
            m_largestOfArms[numberOf(scope)] = std::max(m_largestOfArms[numberOf(scope)], sizeOf(arm, column));
    }
    return m_largestOfArms[numberOf(scope)];
}

void NameResolver::refuse(const ColumnUse &use) const
{
    const Scope &scope = m_blocks[use.scope];
    if (use.qualifier.empty()) {
        const bool alone = scope.sources.size() == 1 && !scope.sources.front().alias.empty();
        const std::string owner = alone ? quoted(scope.sources.front().alias) : std::string("from 中的表都");
        throw Refusal(use.position, "有误：" + owner + "没有" + quoted(use.name) + "这一列");
    }
    for (Scope::Number number = use.scope; number != Scope::none; number = m_blocks[number].parent) {
        if (sourceNamed(m_blocks[number], use.qualifier))
            throw Refusal(use.position, "有误：" + quoted(use.qualifier) + "没有" + quoted(use.name) + "这一列");
    }
    throw Refusal(use.position, "有误：" + quoted(use.qualifier) + "不是 from 中的表名或别名");
}

} // namespace

void resolveNames(Scopes &scopes, std::size_t tokens) { NameResolver(scopes).run(tokens); }

} // namespace engine::gate
