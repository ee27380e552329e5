#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace engine::gate {

/// Why a statement is refused, and where: a byte position in its text.
class Refusal : public std::runtime_error {
public:
    Refusal(std::size_t position, const std::string &reason)
        : std::runtime_error(reason)
        , m_position(position)
    {
    }
    std::size_t position() const { return m_position; }

private:
    std::size_t m_position;
};

enum class Symbol : std::uint8_t {
    // clang-format off
    End, Name, QuotedName, Text, Number,
    LeftParenthesis, RightParenthesis, Comma, Dot, Plus, Minus, Star, Slash, Concat,
    Equal, Unequal, Less, LessEqual, Greater, GreaterEqual,
    // Words that are no names.
    All, And, As, Asc, Between, By, Case, Cross, Desc, Distinct, Else, EndWord, Escape, Exists, From, Full, Group, Having, In,
    Inner, Intersect, Is, Join, Left, Like, MinusWord, Natural, Not, Null, On, Or, Order, Outer, Right, Select, Then, Union,
    Using, When, Where, With,
    // Names with a meaning at some places.
    First, Last, Nulls, Rownum, Sysdate,
    // A name in Oracle, a reserved word in some database that may get the statement.
    ReservedElsewhere,
    // What a reader's value stands for.
    Placeholder,
    // clang-format on
};

struct Token {
    Symbol symbol = Symbol::End;
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
};

/// Cuts the text into tokens, an End token last; comments and hints are skipped.
/// Refuses whatever databases read in different ways: control characters, invalid UTF-8, nested comments, quotes with a
/// prefix, binds, brackets, backslashes and the like. A carriage return must be followed by a line feed outside of texts.
std::vector<Token> tokensOf(std::string_view text);
/// Likewise of the condition of a rule, which may have placeholders and no comments.
std::vector<Token> conditionTokensOf(std::string_view text);

} // namespace engine::gate
