#include "engine/gate/nesting.h"

#include <algorithm>
#include <charconv>

namespace engine::gate {

/// Conditions joined by or.
Parser::Operand Parser::parseCondition(Rownum rownum)
{
    const std::int64_t limit = m_block->limit;
    Operand condition = parseConjunction(rownum);
    if (at(Symbol::Or) && m_block->limit != limit)
        annotate(Construct::Rownum, condition.begin, condition.end);
    while (accept(Symbol::Or))
        condition = { condition.begin, parseConjunction(Rownum::Compares).end };
    return condition;
}

Parser::Operand Parser::parseConjunction(Rownum rownum)
{
    Operand result { .begin = peek().begin };
    int conditions = 0;
    do {
        const std::size_t firstToken = m_next;
        const Operand condition = parseNegation();
        result = ++conditions == 1 ? condition : Operand { result.begin, condition.end };
        if (rownum == Rownum::Limits)
            takeRowCondition(firstToken);
    } while (accept(Symbol::And));
    return result;
}

/// rownum=1, rownum<=n and rownum<n, when the condition that begins at `firstToken` is one of them.
void Parser::takeRowCondition(std::size_t firstToken)
{
    if (m_next - firstToken != 3 || m_tokens[firstToken].symbol != Symbol::Rownum)
        return;
    const Symbol sign = m_tokens[firstToken + 1].symbol;
    const std::string_view number = textOf(m_tokens[firstToken + 2]);
    std::int64_t limit = 0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), limit);
    if (error != std::errc() || end != number.data() + number.size())
        return;
    if (sign == Symbol::Less)
        limit = std::max<std::int64_t>(limit - 1, 0);
    else if (sign != Symbol::LessEqual && !(sign == Symbol::Equal && limit == 1))
        return;
    --m_block->rownums;
    m_block->limit = m_block->limit < 0 ? limit : std::min(limit, m_block->limit);
    annotate(Construct::RowCondition, m_tokens[firstToken].begin, lastEnd());
}

Parser::Operand Parser::parseNegation()
{
    if (!at(Symbol::Not))
        return parseComparison();
    const std::uint32_t begin = peek().begin;
    while (accept(Symbol::Not)) { }
    return { begin, parseComparison().end };
}

Parser::Operand Parser::parseComparison()
{
    if (at(Symbol::Exists)) {
        const std::uint32_t begin = take().begin;
        return { begin, parseSubquery(SubqueryKind::Set).end };
    }
    const Operand left = parseSum();
    if (peek().symbol >= Symbol::Equal && peek().symbol <= Symbol::GreaterEqual) {
        take();
        compare(left, parseSum());
        return { left.begin, lastEnd() };
    }
    return acceptTest(left) ? Operand { left.begin, lastEnd() } : left;
}

/// is null, in, like and between.
bool Parser::acceptTest(const Operand &left)
{
    if (accept(Symbol::Is)) {
        accept(Symbol::Not);
        expect(Symbol::Null, "null");
        return true;
    }
    const bool negated = accept(Symbol::Not);
    if (accept(Symbol::In)) {
        if (!negated && acceptSites(left))
            return true;
        parseInList(left);
    } else if (accept(Symbol::Like)) {
        const Operand pattern = parseSum();
        if (accept(Symbol::Escape))
            expect(Symbol::Text, "转义字符");
        else
            annotate(Construct::LikePattern, pattern.begin, pattern.end);
    } else if (accept(Symbol::Between)) {
        compare(left, parseSum());
        expect(Symbol::And, "and");
        compare(left, parseSum());
    } else if (negated) {
        refuse("in、like 或 between");
    } else {
        return false;
    }
    return true;
}

void Parser::parseInList(const Operand &left)
{
    if (peek(1).symbol == Symbol::Select) {
        parseSubquery(SubqueryKind::Set);
        return;
    }
    const Nesting nesting(*this);
    expect(Symbol::LeftParenthesis, "左括号");
    do {
        compare(left, parseSum());
    } while (accept(Symbol::Comma));
    expect(Symbol::RightParenthesis, "右括号");
}

/// "in (:sites)"; it is for the condition of a rule, as no statement has a placeholder.
bool Parser::acceptSites(const Operand &left)
{
    if (peek(1).symbol != Symbol::Placeholder || textOf(peek(1)) != ":sites" || peek(2).symbol != Symbol::RightParenthesis)
        return false;
    // Oracle gets what stands before the list again for every thousand sites.
    if (m_text.substr(left.begin, left.end - left.begin).find(':') != std::string_view::npos)
        throw Refusal(left.begin, "的 in (:sites) 前面不能有占位符和冒号");
    const std::uint32_t begin = expect(Symbol::LeftParenthesis, "左括号").begin;
    take();
    take();
    ++m_siteLists;
    annotate(Construct::SiteList, begin, lastEnd(), left.begin);
    return true;
}

Parser::Operand Parser::parsePlaceholder()
{
    const std::string_view name = textOf(peek());
    if (name == ":sites")
        throw Refusal(peek().begin, "的 :sites 只能写作 in (:sites)");
    const Token &token = take();
    annotate(name == ":site" ? Construct::OwnSite : Construct::Employee, token.begin, token.end);
    return { token.begin, token.end, ValueKind::Text };
}

/// Oracle compares a number with a text as numbers.
void Parser::compare(const Operand &left, const Operand &right)
{
    if (left.kind == ValueKind::Number && right.kind == ValueKind::TextLiteral)
        annotate(Construct::NumberText, right.begin, right.end);
    if (left.kind == ValueKind::TextLiteral && right.kind == ValueKind::Number)
        annotate(Construct::NumberText, left.begin, left.end);
}

/// Sums, differences and concatenations, which bind equally in Oracle.
Parser::Operand Parser::parseSum()
{
    Operand left = parseProduct();
    bool concatenation = false;
    while (at(Symbol::Plus) || at(Symbol::Minus) || at(Symbol::Concat)) {
        const Token &sign = take();
        const Operand right = parseProduct();
        if (sign.symbol == Symbol::Concat) {
            concatenation = true;
            annotate(Construct::ConcatSign, sign.begin, sign.end);
            left = { left.begin, right.end, ValueKind::Text };
            continue;
        }
        if (concatenation)
            annotate(Construct::Concat, left.begin, left.end);
        concatenation = false;
        left = added(left, sign, right);
    }
    if (concatenation)
        annotate(Construct::Concat, left.begin, left.end);
    return left;
}

Parser::Operand Parser::added(const Operand &left, const Token &sign, const Operand &right)
{
    Operand sum { left.begin, right.end, ValueKind::Number };
    if (left.kind != ValueKind::Date && right.kind != ValueKind::Date)
        return sum;
    const bool minus = sign.symbol == Symbol::Minus;
    annotate(Construct::DateSign, sign.begin, sign.end);
    annotate(minus ? Construct::DateMinus : Construct::DatePlus, sum.begin, sum.end);
    sum.kind = minus && right.kind == ValueKind::Date ? ValueKind::Number : ValueKind::Date;
    return sum;
}

Parser::Operand Parser::parseProduct()
{
    Operand left = parseSign();
    while (at(Symbol::Star) || at(Symbol::Slash)) {
        const Token &sign = take();
        const Operand right = parseSign();
        if (sign.symbol == Symbol::Slash) {
            annotate(Construct::Division, sign.begin, sign.end);
            annotate(Construct::Divisor, right.begin, right.end);
        }
        left = { left.begin, right.end, ValueKind::Number };
    }
    return left;
}

Parser::Operand Parser::parseSign()
{
    if (!at(Symbol::Plus) && !at(Symbol::Minus))
        return parsePrimary();
    const std::uint32_t begin = peek().begin;
    while (accept(Symbol::Plus) || accept(Symbol::Minus)) { }
    return { begin, parsePrimary().end, ValueKind::Number };
}

Parser::Operand Parser::parsePrimary()
{
    const Token &token = peek();
    switch (token.symbol) {
    case Symbol::Number:
        take();
        return { token.begin, token.end, ValueKind::Number };
    case Symbol::Null:
        take();
        return { token.begin, token.end };
    case Symbol::LeftParenthesis:
        return parseParenthesis();
    case Symbol::Case:
        return parseCase();
    case Symbol::Text:
        take();
        if (token.end - token.begin > 2)
            return { token.begin, token.end, ValueKind::TextLiteral };
        annotate(Construct::EmptyText, token.begin, token.end);
        return { token.begin, token.end };
    case Symbol::Placeholder:
        return parsePlaceholder();
    case Symbol::Rownum:
        ++m_block->rownums;
        take();
        return { token.begin, token.end, ValueKind::Number };
    case Symbol::Sysdate:
        annotate(Construct::Sysdate, token.begin, token.end);
        take();
        return { token.begin, token.end, ValueKind::Date };
    default:
        return parseName();
    }
}

Parser::Operand Parser::parseParenthesis()
{
    if (peek(1).symbol == Symbol::Select)
        return parseSubquery(SubqueryKind::Scalar);
    const Nesting nesting(*this);
    const std::uint32_t begin = take().begin;
    const Operand inner = parseCondition();
    expect(Symbol::RightParenthesis, "右括号");
    return { begin, lastEnd(), inner.kind == ValueKind::TextLiteral ? ValueKind::Text : inner.kind };
}

Parser::Operand Parser::parseCase()
{
    const Nesting nesting(*this);
    const std::uint32_t begin = take().begin;
    const bool simple = !at(Symbol::When);
    const Operand subject = simple ? parseSum() : Operand {};
    ValueKind kind = ValueKind::Unknown;
    const auto parseResult = [&] {
        if (const Operand result = parseSum(); result.kind == ValueKind::Number || result.kind == ValueKind::Date)
            kind = result.kind;
    };
    if (!at(Symbol::When))
        refuse("when");
    while (accept(Symbol::When)) {
        if (simple)
            compare(subject, parseSum());
        else
            parseCondition();
        expect(Symbol::Then, "then");
        parseResult();
    }
    if (accept(Symbol::Else))
        parseResult();
    expect(Symbol::EndWord, "when、else 或 end");
    return { begin, lastEnd(), kind };
}

Parser::Operand Parser::parseName()
{
    if (peek(1).symbol == Symbol::LeftParenthesis)
        return parseCall(takeName("列名、数值或表达式"));
    return parseColumnName();
}

Parser::Operand Parser::parseColumnName()
{
    const Token &first = takeName("列名、数值或表达式");
    const bool qualified = accept(Symbol::Dot);
    const Token &column = qualified ? takeName("列名") : first;
    if (at(Symbol::Dot) || at(Symbol::LeftParenthesis))
        refuse("“表.列”形式的列名");
    m_scopes.uses.push_back(
        { qualified ? nameOf(first) : std::string_view(), nameOf(column), first.begin, m_block->scope, m_block->clause });
    return { first.begin, lastEnd(), ValueKind::Unknown, false };
}

Parser::Operand Parser::parseCall(const Token &name)
{
    const Function *const function = name.symbol == Symbol::Name ? functionNamed(textOf(name)) : nullptr;
    if (!function)
        throw Refusal(name.begin, "的函数“" + std::string(textOf(name)) + "”不在允许使用的函数之列");
    const Nesting nesting(*this);
    take();
    annotate(Construct::FunctionName, name.begin, name.end);
    m_block->aggregate |= function->aggregate;
    const ValueKind kind = parseArguments(*function, name);
    expect(Symbol::RightParenthesis, "右括号");
    return { name.begin, lastEnd(), kind };
}

Parser::ValueKind Parser::parseArguments(const Function &function, const Token &name)
{
    constexpr ValueKind kinds[] = { ValueKind::Unknown, ValueKind::Number, ValueKind::Text, ValueKind::Date };
    ValueKind kind = kinds[int(function.result)];
    if (function.name == "COUNT" && accept(Symbol::Star))
        return kind;
    if (function.aggregate && !accept(Symbol::Distinct))
        accept(Symbol::All);
    int count = 0;
    do {
        const Operand argument = parseSum();
        const bool isValue = function.name != "DECODE" || count >= 2;
        if (function.result == FunctionResult::Argument && isValue
            && (argument.kind == ValueKind::Number || argument.kind == ValueKind::Date) && kind == ValueKind::Unknown)
            kind = argument.kind;
        ++count;
    } while (accept(Symbol::Comma));
    if (count < function.fewest || count > function.most)
        throw Refusal(name.begin, "的函数“" + std::string(textOf(name)) + "”参数个数有误");
    return kind;
}

} // namespace engine::gate
