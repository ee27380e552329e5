#pragma once

#include "engine/gate/functions.h"
#include "engine/gate/gate.h"
#include "engine/gate/lexer.h"
#include "engine/gate/row_rules.h"
#include "engine/gate/scopes.h"

#include <algorithm>

namespace engine::gate {

/// A recursive-descent parser of the Oracle SELECT subset. Recursion grows with nesting alone, never with length.
class Parser {
public:
    /// `reading`: null when no rules apply.
    Parser(std::string_view text, const std::vector<Token> &tokens, const Schema &schema, const Reading *reading);
    /// Throws Refusal.
    std::vector<Annotation> run();
    /// Reads a condition over the columns of a table in place of a statement. Throws Refusal.
    Condition runCondition(const std::string &table);

private:
    enum class ValueKind : std::uint8_t { Unknown, Number, Text, TextLiteral, Date };
    enum class SubqueryKind : std::uint8_t { Top, Derived, Scalar, Set }; ///< Set: the subquery of "in" or "exists"

    struct Operand {
        std::uint32_t begin = 0;
        std::uint32_t end = 0;
        ValueKind kind = ValueKind::Unknown;
        bool computed = true; ///< anything but a plain column or star
    };

    /// One select, from "select" to what stands before the next set operation.
    struct Block {
        Scope::Number scope = Scope::none;
        std::uint32_t begin = 0;
        std::uint32_t end = 0;
        Clause clause = Clause::Expression; ///< being read
        Operand firstItem {};
        int items = 0;
        int rownums = 0; ///< not yet understood as a limit
        std::int64_t limit = -1;
        bool aggregate = false;
        bool merged = false; ///< group by, having or distinct
    };
    class Nesting;

    // queries
    Operand parseSubquery(SubqueryKind kind);
    ValueKind parseQuery(SubqueryKind kind);
    Block parseBlock(SubqueryKind kind, Scope::Number parent);
    void parseSelectList(Block &block, SubqueryKind kind);
    void parseItem(Block &block, SubqueryKind kind);
    void parseFrom();
    void parseTableList();
    void parseJoinedTable();
    void parseTable();
    void takeTableName();
    void parseOrderBy();
    void parseGroupBy();
    void parseSortKey();
    void finishBlock(const Block &block, SubqueryKind kind);
    void finishArm(const Block &block);
    bool isSetOperation() const;
    void acceptSetOperation();
    bool acceptJoin(bool &conditional);
    std::string_view acceptTableAlias();
    void addSource(const Scope::Source &source, std::uint32_t position);

    // conditions and expressions
    enum class Rownum { Limits, Compares }; ///< what a condition on it does: it limits the rows, in a where clause only
    Operand parseCondition(Rownum rownum = Rownum::Compares);
    Operand parseConjunction(Rownum rownum);
    Operand parseNegation();
    Operand parseComparison();
    bool acceptTest(const Operand &left);
    void parseInList(const Operand &left);
    bool acceptSites(const Operand &left);
    Operand parsePlaceholder();
    Operand parseSum();
    Operand parseProduct();
    Operand parseSign();
    Operand parsePrimary();
    Operand parseParenthesis();
    Operand parseCase();
    Operand parseName();
    Operand parseColumnName();
    Operand parseCall(const Token &name);
    ValueKind parseArguments(const Function &function, const Token &name);
    Operand added(const Operand &left, const Token &sign, const Operand &right);
    void takeRowCondition(std::size_t firstToken);
    void compare(const Operand &left, const Operand &right);

    // tokens
    const Token &peek(std::size_t ahead = 0) const { return m_tokens[std::min(m_next + ahead, m_tokens.size() - 1)]; }
    bool at(Symbol symbol) const { return m_tokens[m_next].symbol == symbol; }
    bool accept(Symbol symbol);
    const Token &take();
    const Token &expect(Symbol symbol, std::string_view description);
    std::uint32_t lastEnd() const { return m_tokens[m_next - 1].end; }
    bool isName(Symbol symbol) const;
    const Token &takeName(std::string_view description);
    std::string_view textOf(const Token &token) const { return m_text.substr(token.begin, token.end - token.begin); }
    std::string_view nameOf(const Token &token) const; ///< without quotes
    void annotate(Construct construct, std::uint32_t begin, std::uint32_t end, std::int64_t limit = 0);
    [[noreturn]] void refuse(std::string_view expected) const;

    std::string_view m_text;
    const std::vector<Token> &m_tokens;
    const Schema &m_schema;
    const Reading *m_reading;
    std::size_t m_ruleWords = 0; ///< that come in place of tables
    std::size_t m_siteLists = 0;
    Scopes m_scopes {};
    std::size_t m_next = 0;
    int m_depth = 0;
    Block *m_block = nullptr;
    std::vector<Annotation> m_annotations;
};

} // namespace engine::gate
