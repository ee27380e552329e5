#include "engine/gate/name_resolver.h"
#include "engine/gate/nesting.h"

namespace engine::gate {

Parser::Parser(std::string_view text, const std::vector<Token> &tokens, const Schema &schema, const Reading *reading)
    : m_text(text)
    , m_tokens(tokens)
    , m_schema(schema)
    , m_reading(reading)
{
    m_annotations.reserve(64);
    m_scopes.uses.reserve(64);
}

std::vector<Annotation> Parser::run()
{
    if (!at(Symbol::Select))
        throw Refusal(peek().begin, "的“" + std::string(textOf(peek())) + "”不允许使用，只允许以 select 开头的查询语句");
    parseQuery(SubqueryKind::Top);
    if (!at(Symbol::End))
        refuse("语句到此结束");
    resolveNames(m_scopes, m_tokens.size() + m_ruleWords);
    return std::move(m_annotations);
}

Condition Parser::runCondition(const std::string &table)
{
    Block block { .scope = m_scopes.open(Scope::none) };
    m_block = &block;
    addSource({ table, &m_schema.find(table)->second, Scope::none }, 0);
    parseCondition();
    if (!at(Symbol::End))
        refuse("条件到此结束");
    if (block.rownums > 0 || block.aggregate)
        throw Refusal(0, "有误：行规则不能用 rownum 和汇总函数");
    resolveNames(m_scopes, m_tokens.size());
    return { std::string(m_text), std::move(m_annotations), m_tokens.size(), m_siteLists };
}

/// A subquery with its parentheses.
Parser::Operand Parser::parseSubquery(SubqueryKind kind)
{
    const Nesting nesting(*this);
    const Token &open = expect(Symbol::LeftParenthesis, "左括号");
    if (!at(Symbol::Select))
        refuse("select");
    const ValueKind value = parseQuery(kind);
    expect(Symbol::RightParenthesis, "右括号");
    return { open.begin, lastEnd(), value };
}

Parser::ValueKind Parser::parseQuery(SubqueryKind kind)
{
    Block *const outer = m_block;
    // What stands beside a subquery in a from clause is not visible in it.
    const Scope::Number around = outer ? outer->scope : Scope::none;
    const Scope::Number parent = kind == SubqueryKind::Derived ? m_scopes.parentOf(around) : around;
    Block first = parseBlock(kind, parent);
    m_block = &first;
    bool onlyArm = true;
    bool united = false;
    while (isSetOperation()) {
        const std::uint32_t end = lastEnd();
        const bool intersects = at(Symbol::Intersect);
        acceptSetOperation();
        if (onlyArm)
            finishArm(first);
        if (intersects && united)
            annotate(Construct::IntersectedArms, first.begin, end);
        united = !intersects;
        onlyArm = false;
        if (!at(Symbol::Select))
            refuse("select");
        const Block arm = parseBlock(SubqueryKind::Derived, parent);
        m_scopes.blocks[first.scope].arms.push_back(arm.scope);
        finishArm(arm);
    }
    const int rownums = first.rownums;
    if (accept(Symbol::Order))
        parseOrderBy();
    first.end = onlyArm ? lastEnd() : first.end;
    if (onlyArm)
        finishBlock(first, kind);
    else if (first.rownums != rownums)
        annotate(Construct::Rownum, first.begin, first.end);
    m_block = outer;
    return first.firstItem.kind;
}

bool Parser::isSetOperation() const { return at(Symbol::Union) || at(Symbol::MinusWord) || at(Symbol::Intersect); }

void Parser::acceptSetOperation()
{
    if (at(Symbol::MinusWord))
        annotate(Construct::MinusWord, peek().begin, peek().end);
    if (take().symbol == Symbol::Union)
        accept(Symbol::All);
}

Parser::Block Parser::parseBlock(SubqueryKind kind, Scope::Number parent)
{
    Block block { .scope = m_scopes.open(parent), .begin = take().begin };
    Block *const outer = m_block;
    m_block = &block;
    block.merged = accept(Symbol::Distinct);
    if (!block.merged)
        accept(Symbol::All);
    parseSelectList(block, kind);
    parseFrom();
    if (accept(Symbol::Where))
        parseCondition(Rownum::Limits);
    if (accept(Symbol::Group)) {
        block.merged = true;
        parseGroupBy();
    }
    if (accept(Symbol::Having)) {
        block.merged = true;
        parseCondition();
    }
    block.end = lastEnd();
    m_scopes.blocks[block.scope].isCopied = !block.merged && !block.aggregate;
    m_block = outer;
    return block;
}

void Parser::parseSelectList(Block &block, SubqueryKind kind)
{
    do {
        parseItem(block, kind);
    } while (accept(Symbol::Comma));
}

void Parser::parseItem(Block &block, SubqueryKind kind)
{
    ++block.items;
    const bool qualified = isName(peek().symbol) && peek(1).symbol == Symbol::Dot && peek(2).symbol == Symbol::Star;
    if (at(Symbol::Star) || qualified) {
        ++block.items; // A star stands for any number of columns.
        m_scopes.blocks[block.scope].columns.push_back(
            { .name = qualified ? nameOf(peek()) : std::string_view(), .tokens = 1, .position = peek().begin, .isStar = true });
        if (qualified) {
            takeName("名称");
            take();
        }
        take();
        return;
    }
    const std::size_t firstToken = m_next;
    const auto firstUse = std::uint32_t(m_scopes.uses.size());
    const Operand item = parseSum();
    const auto tokens = std::uint32_t(m_next - firstToken);
    if (block.items == 1)
        block.firstItem = item;
    std::string_view name = item.computed ? std::string_view() : nameOf(m_tokens[m_next - 1]);
    if (accept(Symbol::As) || isName(peek().symbol))
        name = nameOf(takeName("列的别名"));
    else if (kind == SubqueryKind::Top && item.computed)
        annotate(Construct::UnnamedColumn, item.begin, item.end);
    m_scopes.blocks[block.scope].columns.push_back(
        { .name = name, .firstUse = firstUse, .lastUse = std::uint32_t(m_scopes.uses.size()), .tokens = tokens });
}

void Parser::parseFrom()
{
    const Token &from = expect(Symbol::From, "from");
    const bool dual = at(Symbol::Name) && NameEqual()(textOf(peek()), "DUAL") && !m_schema.contains("DUAL");
    if (!dual)
        return parseTableList();
    take();
    if (isName(peek().symbol))
        take();
    if (at(Symbol::Comma))
        refuse("只有 dual 一个表");
    annotate(Construct::FromDual, from.begin, lastEnd());
}

void Parser::parseTableList()
{
    do {
        parseJoinedTable();
    } while (accept(Symbol::Comma));
}

void Parser::parseJoinedTable()
{
    parseTable();
    bool conditional = false;
    while (acceptJoin(conditional)) {
        parseTable();
        if (conditional && accept(Symbol::On)) {
            parseCondition();
        } else if (conditional) {
            expect(Symbol::Using, "on 或 using");
            expect(Symbol::LeftParenthesis, "左括号");
            do {
                parseColumnName();
            } while (accept(Symbol::Comma));
            expect(Symbol::RightParenthesis, "右括号");
        }
    }
}

/// The words of a join; `conditional` tells whether on or using must follow the table.
bool Parser::acceptJoin(bool &conditional)
{
    const bool natural = accept(Symbol::Natural);
    const bool cross = !natural && accept(Symbol::Cross);
    conditional = !natural && !cross;
    bool kind = natural || cross;
    if (!cross && accept(Symbol::Inner)) {
        kind = true;
    } else if (!cross && (accept(Symbol::Left) || accept(Symbol::Right) || accept(Symbol::Full))) {
        kind = true;
        accept(Symbol::Outer);
    }
    if (!kind)
        return accept(Symbol::Join);
    expect(Symbol::Join, "join");
    return true;
}

void Parser::parseTable()
{
    if (at(Symbol::LeftParenthesis) && peek(1).symbol == Symbol::Select) {
        const Scope::Number derived = Scope::Number(m_scopes.blocks.size());
        const Operand table = parseSubquery(SubqueryKind::Derived);
        const std::string_view alias = acceptTableAlias();
        if (alias.empty())
            annotate(Construct::UnnamedTable, table.begin, table.end);
        addSource({ alias, nullptr, derived }, table.begin);
        return;
    }
    if (at(Symbol::LeftParenthesis)) {
        const Nesting nesting(*this);
        take();
        parseTableList();
        expect(Symbol::RightParenthesis, "右括号");
        return;
    }
    if (!isName(peek().symbol))
        refuse("表名");
    const Token &name = peek();
    const auto table = m_schema.find(nameOf(name));
    if (table == m_schema.end())
        throw Refusal(name.begin, "的表“" + upperCase(nameOf(name)) + "”不在允许查询的表之列");
    takeTableName();
    const std::string_view alias = acceptTableAlias();
    addSource({ alias.empty() ? nameOf(name) : alias, &table->second, Scope::none }, name.begin);
}

/// What a rule puts in place of a table has no name: the table's stays behind it, unless an alias follows.
void Parser::takeTableName()
{
    const auto rule = m_reading ? m_reading->rules.numberOf(nameOf(peek())) : std::nullopt;
    if (!rule) {
        takeName("表名");
        return;
    }
    const Token &name = peek();
    m_ruleWords += m_reading->wordsOf(*rule);
    if (m_ruleWords > largestWritten)
        throw Refusal(name.begin, "的表按您的数据范围限定后，语句超过 " + std::to_string(largestWritten) + " 项，请少用几次这个表");
    const bool hasAlias = peek(1).symbol == Symbol::As || isName(peek(1).symbol);
    annotate(Construct::RuledTable, name.begin, hasAlias ? name.end : name.begin, std::int64_t(*rule));
    if (hasAlias)
        take();
    else
        takeName("表名");
}

void Parser::addSource(const Scope::Source &source, std::uint32_t position)
{
    std::vector<Scope::Source> &sources = m_scopes.blocks[m_block->scope].sources;
    if (sources.size() == mostTables)
        throw Refusal(position, "的表太多，一个 from 后最多 " + std::to_string(mostTables) + " 个表");
    sources.push_back(source);
}

/// Empty when there is none.
std::string_view Parser::acceptTableAlias()
{
    if (!accept(Symbol::As) && !isName(peek().symbol))
        return {};
    return nameOf(takeName("表的别名"));
}

void Parser::parseGroupBy()
{
    expect(Symbol::By, "by");
    m_block->clause = Clause::Key;
    do {
        parseSum();
    } while (accept(Symbol::Comma));
    m_block->clause = Clause::Expression;
}

void Parser::parseOrderBy()
{
    expect(Symbol::By, "by");
    m_block->clause = Clause::Key;
    do {
        parseSortKey();
    } while (accept(Symbol::Comma));
    m_block->clause = Clause::Expression;
}

void Parser::parseSortKey()
{
    const std::uint32_t begin = parseSum().begin;
    const bool descending = accept(Symbol::Desc);
    if (!descending)
        accept(Symbol::Asc);
    if (accept(Symbol::Nulls)) {
        if (!accept(Symbol::First) && !accept(Symbol::Last))
            refuse("first 或 last");
        return;
    }
    annotate(descending ? Construct::SortKeyDescending : Construct::SortKey, begin, lastEnd());
}

void Parser::finishBlock(const Block &block, SubqueryKind kind)
{
    const bool limited = block.limit >= 0;
    const bool rowByRow = !block.aggregate && !block.merged;
    if (block.rownums > 0 || (limited && !rowByRow))
        annotate(Construct::Rownum, block.begin, block.end);
    else if (limited)
        annotate(Construct::LimitedBlock, block.begin, block.end, block.limit);
    else if (kind == SubqueryKind::Scalar && rowByRow && block.items == 1)
        annotate(Construct::SingleValue, block.firstItem.begin, block.firstItem.end);
}

void Parser::finishArm(const Block &block)
{
    if (block.rownums > 0 || (block.limit >= 0 && (block.aggregate || block.merged)))
        annotate(Construct::Rownum, block.begin, block.end);
    else if (block.limit >= 0)
        annotate(Construct::LimitedArm, block.begin, block.end, block.limit);
}

bool Parser::accept(Symbol symbol)
{
    if (!at(symbol))
        return false;
    ++m_next;
    return true;
}

/// The next token; the End token is never passed.
const Token &Parser::take()
{
    const Token &token = m_tokens[m_next];
    if (token.symbol != Symbol::End)
        ++m_next;
    return token;
}

const Token &Parser::expect(Symbol symbol, std::string_view description)
{
    if (!at(symbol))
        refuse(description);
    return take();
}

bool Parser::isName(Symbol symbol) const
{
    switch (symbol) {
    case Symbol::Name:
    case Symbol::QuotedName:
    case Symbol::First:
    case Symbol::Last:
    case Symbol::Nulls:
    case Symbol::ReservedElsewhere:
        return true;
    default:
        return false;
    }
}

const Token &Parser::takeName(std::string_view description)
{
    if (!isName(peek().symbol))
        refuse(description);
    if (at(Symbol::ReservedElsewhere))
        annotate(Construct::ReservedName, peek().begin, peek().end);
    else if (at(Symbol::QuotedName))
        annotate(Construct::QuotedName, peek().begin, peek().end);
    return take();
}

std::string_view Parser::nameOf(const Token &token) const
{
    const std::string_view text = textOf(token);
    return token.symbol == Symbol::QuotedName ? text.substr(1, text.size() - 2) : text;
}

void Parser::annotate(Construct construct, std::uint32_t begin, std::uint32_t end, std::int64_t limit)
{
    m_annotations.push_back({ construct, begin, end, limit });
}

void Parser::refuse(std::string_view expected) const
{
    const Token &token = peek();
    const std::string found = token.symbol == Symbol::End ? "语句提前结束" : "的“" + std::string(textOf(token)).substr(0, 40) + "”不合语法";
    throw Refusal(token.begin, found + "，此处应为" + std::string(expected));
}

} // namespace engine::gate
