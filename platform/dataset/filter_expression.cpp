#include "platform/dataset/filter_expression.h"

#include "platform/dataset/data_set.h"

#include <array>
#include <utility>

using namespace platform;

using packet::ColumnType;
using Bits = std::array<std::uint8_t, packet::Packet::blockRows>;
using Test = FilterCondition::Test;
namespace platform {

/// A condition, or several nodes of which all or one must hold. "not" has been carried down into the conditions.
struct FilterExpression::Node {
    bool all = true;
    std::vector<Node> children;
    std::optional<FilterCondition> condition;

    void evaluate(const packet::Packet &packet, std::size_t block, std::uint8_t *passes);
    bool passes(const RowOverlay &rows, std::uint32_t row) const;
};

void FilterExpression::Node::evaluate(const packet::Packet &packet, std::size_t block, std::uint8_t *passes)
{
    if (condition)
        return condition->evaluate(packet, block, passes);
    children.front().evaluate(packet, block, passes);
    const auto other = std::make_unique<Bits>();
    for (std::size_t child = 1; child < children.size(); ++child) {
        children[child].evaluate(packet, block, other->data());
        for (std::size_t row = 0; row < packet.blocks()[block].rows; ++row)
            passes[row] = all ? passes[row] & (*other)[row] : passes[row] | (*other)[row];
    }
}

bool FilterExpression::Node::passes(const RowOverlay &rows, std::uint32_t row) const
{
    if (condition)
        return condition->passes(rows, row);
    for (const Node &child : children) {
        if (child.passes(rows, row) != all)
            return !all;
    }
    return all;
}

} // namespace platform

namespace {

struct Token {
    enum Kind { End, Name, BracketedName, Text, Number, Symbol } kind = End;
    QString text;
    qsizetype position = 0;
};

[[noreturn]] void failAt(qsizetype position, const QString &what)
{
    throw DataSetError(u"过滤条件第 " + QString::number(position + 1) + u" 个字符处：" + what);
}

class Lexer {
public:
    explicit Lexer(const QString &text)
        : m_text(text)
    {
    }

    Token next()
    {
        while (m_at < m_text.size() && m_text[m_at].isSpace())
            ++m_at;
        const qsizetype start = m_at;
        if (m_at == m_text.size())
            return { Token::End, {}, start };
        const QChar first = m_text[m_at];
        if (first == u'\'')
            return { Token::Text, quoted(u'\'', QStringLiteral("文字没有结束，缺少单引号。")), start };
        if (first == u'[')
            return { Token::BracketedName, quoted(u']', QStringLiteral("字段名没有结束，缺少“]”。")), start };
        if (first.isLetter() || first == u'_')
            return { Token::Name, take([](QChar c) { return c.isLetterOrNumber() || c == u'_' || c == u'$' || c == u'#'; }), start };
        if (isDigit(first) || ((first == u'-' || first == u'.') && m_at + 1 < m_text.size()))
            return { Token::Number, first + afterFirst([](QChar c) { return isDigit(c) || c == u'.'; }), start };
        return { Token::Symbol, symbol(), start };
    }

private:
    static bool isDigit(QChar c) { return c >= u'0' && c <= u'9'; }

    template <class Accept>
    QString take(Accept accept)
    {
        const qsizetype start = m_at;
        while (m_at < m_text.size() && accept(m_text[m_at]))
            ++m_at;
        return m_text.mid(start, m_at - start);
    }
    template <class Accept>
    QString afterFirst(Accept accept)
    {
        ++m_at;
        return take(accept);
    }
    QString quoted(QChar end, const QString &unfinished)
    {
        const qsizetype start = m_at;
        QString content;
        for (++m_at; m_at < m_text.size(); ++m_at) {
            if (m_text[m_at] == end && (++m_at == m_text.size() || m_text[m_at] != end))
                return content;
            content += m_text[m_at];
        }
        failAt(start, unfinished);
    }
    QString symbol()
    {
        for (const QStringView two : { u"<>", u"<=", u">=", u"!=" }) {
            if (QStringView(m_text).mid(m_at).startsWith(two)) {
                m_at += 2;
                return two.toString();
            }
        }
        return m_text[m_at++];
    }

    const QString &m_text;
    qsizetype m_at = 0;
};

class Parser {
public:
    Parser(const QString &text, const packet::Packet &packet)
        : m_lexer(text)
        , m_packet(packet)
    {
        advance();
    }

    FilterExpression::Node parse()
    {
        auto node = alternatives(false);
        if (m_token.kind != Token::End)
            failAt(m_token.position, u"多余的内容“" + m_token.text + u"”。");
        return node;
    }

private:
    using Node = FilterExpression::Node;

    void advance() { m_token = m_lexer.next(); }
    bool isWord(QStringView word) const { return m_token.kind == Token::Name && m_token.text.compare(word, Qt::CaseInsensitive) == 0; }
    bool acceptWord(QStringView word)
    {
        const bool accepted = isWord(word);
        if (accepted)
            advance();
        return accepted;
    }
    bool acceptSymbol(QStringView symbol)
    {
        const bool accepted = m_token.kind == Token::Symbol && m_token.text == symbol;
        if (accepted)
            advance();
        return accepted;
    }
    void expectSymbol(QStringView symbol)
    {
        if (!acceptSymbol(symbol))
            failAt(m_token.position, u"这里应当是“" + symbol + u"”。");
    }
    void expectWord(QStringView word)
    {
        if (!acceptWord(word))
            failAt(m_token.position, u"这里应当是“" + word + u"”。");
    }

    // Carrying "not" down turns "or" into "and" and the other way round.
    Node alternatives(bool negated) { return joined(u"or", negated, &Parser::conjunction, negated); }
    Node conjunction(bool negated) { return joined(u"and", !negated, &Parser::unary, negated); }
    Node joined(QStringView word, bool all, Node (Parser::*part)(bool), bool negated)
    {
        Node node;
        node.all = all;
        do
            node.children.push_back((this->*part)(negated));
        while (acceptWord(word));
        return node.children.size() == 1 ? std::move(node.children.front()) : std::move(node);
    }
    Node unary(bool negated)
    {
        if (++m_depth > 200)
            failAt(m_token.position, QStringLiteral("条件嵌套太深，最多 200 层。"));
        Node node;
        if (acceptWord(u"not")) {
            node = unary(!negated);
        } else if (acceptSymbol(u"(")) {
            node = alternatives(negated);
            expectSymbol(u")");
        } else {
            node.condition = comparison(negated);
        }
        --m_depth;
        return node;
    }

    FilterCondition comparison(bool negated)
    {
        const std::size_t column = field();
        if (acceptWord(u"is")) {
            const bool inverted = acceptWord(u"not");
            expectWord(u"null");
            return { column, Test::IsNull, negated != inverted };
        }
        const bool inverted = acceptWord(u"not");
        if (acceptWord(u"in")) {
            FilterCondition condition(column, Test::OneOf, negated != inverted);
            literalList(condition, column);
            return condition;
        }
        if (acceptWord(u"like")) {
            if (m_packet.schema()[column].type != ColumnType::Text)
                failAt(m_token.position, QStringLiteral("like 只能用于文字字段。"));
            return compared(column, Test::Like, negated != inverted);
        }
        if (inverted)
            failAt(m_token.position, QStringLiteral("not 之后应当是 in 或 like。"));
        return relation(column, negated);
    }

    FilterCondition relation(std::size_t column, bool negated)
    {
        static constexpr struct {
            QStringView symbol;
            Test test;
            bool inverted;
        } relations[] = {
            { u"=", Test::OneOf, false },
            { u"<>", Test::OneOf, true },
            { u"!=", Test::OneOf, true },
            { u"<", Test::Less, false },
            { u"<=", Test::LessOrEqual, false },
            { u">=", Test::Less, true },
            { u">", Test::LessOrEqual, true },
        };
        for (const auto &relation : relations) {
            if (acceptSymbol(relation.symbol))
                return compared(column, relation.test, negated != relation.inverted);
        }
        failAt(m_token.position, QStringLiteral("这里应当是比较符号、in、like 或 is null。"));
    }

    FilterCondition compared(std::size_t column, Test test, bool negated)
    {
        FilterCondition condition(column, test, negated);
        const bool asText = m_token.kind != Token::Number || test == Test::Like;
        addLiteral(condition, column, asText, literal());
        return condition;
    }

    std::size_t field()
    {
        if (m_token.kind != Token::Name && m_token.kind != Token::BracketedName)
            failAt(m_token.position, QStringLiteral("这里应当是字段名。"));
        const int column = m_packet.indexOf(m_token.text.toStdString());
        if (column < 0)
            failAt(m_token.position, u"没有字段“" + m_token.text + u"”。");
        advance();
        return std::size_t(column);
    }

    Token literal()
    {
        if (m_token.kind != Token::Text && m_token.kind != Token::Number)
            failAt(m_token.position, QStringLiteral("这里应当是文字（用单引号括起）或数字。"));
        return std::exchange(m_token, m_lexer.next());
    }

    void literalList(FilterCondition &condition, std::size_t column)
    {
        expectSymbol(u"(");
        std::vector<Token> literals;
        bool asText = false;
        do {
            literals.push_back(literal());
            asText = asText || literals.back().kind == Token::Text;
        } while (acceptSymbol(u","));
        expectSymbol(u")");
        for (const Token &token : literals)
            addLiteral(condition, column, asText, token);
    }

    void addLiteral(FilterCondition &condition, std::size_t column, bool asText, const Token &token)
    {
        const ColumnType type = m_packet.schema()[column].type;
        const std::string text = token.text.toStdString();
        if (token.kind == Token::Text && text.empty())
            return condition.addNull();
        if (type == ColumnType::Text && asText)
            return condition.addText(text);
        if (type == ColumnType::Timestamp) {
            const auto seconds = packet::parseTimestamp(text);
            if (!seconds)
                failAt(token.position, u"“" + token.text + u"”不是日期时间，应写成 2024-03-05 或 2024-03-05 10:07:59。");
            return condition.addTime(*seconds);
        }
        const auto number = packet::Decimal::parse(text);
        if (!number)
            failAt(token.position, u"“" + token.text + u"”不是数字。");
        condition.addNumber(*number);
    }

    Lexer m_lexer;
    const packet::Packet &m_packet;
    Token m_token;
    int m_depth = 0;
};

} // namespace

namespace platform {

FilterExpression::FilterExpression(const QString &text, const packet::Packet &packet)
    : m_root(std::make_unique<Node>(Parser(text, packet).parse()))
{
}

FilterExpression::~FilterExpression() = default;

std::vector<std::uint32_t> FilterExpression::select(const RowOverlay &rows)
{
    const packet::Packet &packet = rows.packet();
    const bool isPlain = rows.isPlain();
    const auto passes = std::make_unique<Bits>();
    std::vector<std::uint32_t> selected(rows.rowCount());
    std::size_t count = 0;
    const auto passesEdited = [&](std::uint32_t row) { return !rows.isDeleted(row) && m_root->passes(rows, row); };
    std::uint32_t row = 0;
    for (std::size_t block = 0; block < packet.blocks().size(); ++block) {
        m_root->evaluate(packet, block, passes->data());
        for (std::uint32_t inBlock = 0; inBlock < packet.blocks()[block].rows; ++inBlock, ++row) {
            selected[count] = row;
            count += isPlain || !rows.isEdited(row) ? (*passes)[inBlock] : passesEdited(row);
        }
    }
    for (; row < rows.rowCount(); ++row) {
        selected[count] = row;
        count += passesEdited(row);
    }
    selected.resize(count);
    selected.shrink_to_fit();
    return selected;
}

} // namespace platform
