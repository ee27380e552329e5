#include "engine/sqlite/regexp_parser.h"

namespace engine {

namespace {

constexpr int mostRepeats = 255;
constexpr int deepestGroup = 100;

struct NamedClass {
    std::u32string_view name;
    std::u32string_view ranges; ///< pairs of first and last character
};

// Letters beyond ASCII count as letters of no case.
constexpr NamedClass namedClasses[] = {
    { U"alpha", U"azAZ\u00C0\U0010FFFF" },
    { U"digit", U"09" },
    { U"alnum", U"azAZ09\u00C0\U0010FFFF" },
    { U"upper", U"AZ" },
    { U"lower", U"az" },
    { U"space", U"\t\r  " },
    { U"blank", U"\t\t  " },
    { U"punct", U"!/:@[`{~" },
    { U"cntrl", U"\x01\x1F\x7F\x7F" },
    { U"print", U" ~\u00A0\U0010FFFF" },
    { U"graph", U"!~\u00A1\U0010FFFF" },
    { U"xdigit", U"09afAF" },
};

} // namespace

bool Regexp::Parser::accept(char32_t character)
{
    if (atEnd() || peek() != character)
        return false;
    ++m_position;
    return true;
}

Regexp::Node Regexp::Parser::run()
{
    Node node = parseAlternatives();
    if (!atEnd())
        throw std::invalid_argument("ORA-12725: 正则表达式中的小括号不匹配");
    return node;
}

Regexp::Node Regexp::Parser::parseAlternatives()
{
    Node first = parseSequence();
    if (peek() != U'|')
        return first;
    Node node { .kind = Node::Alternatives };
    node.children.push_back(std::move(first));
    while (accept(U'|'))
        node.children.push_back(parseSequence());
    return node;
}

Regexp::Node Regexp::Parser::parseSequence()
{
    Node node;
    while (!atEnd() && peek() != U'|' && peek() != U')')
        node.children.push_back(repeated(parseAtom()));
    return node;
}

Regexp::Node Regexp::Parser::parseAtom()
{
    const char32_t character = m_pattern[m_position++];
    const auto leaf = [](Instruction instruction) { return Node { .kind = Node::Leaf, .leaf = instruction }; };
    switch (character) {
    case U'(':
        return parseGroup();
    case U'[':
        return parseSet();
    case U'\\':
        return parseEscape();
    case U'.':
        return leaf({ Instruction::Any });
    case U'^':
        return leaf({ Instruction::Begin });
    case U'$':
        return leaf({ Instruction::End });
    case U'*':
    case U'+':
    case U'?':
        throw std::invalid_argument("ORA-12728: 正则表达式的重复符号前没有可重复的内容");
    default:
        return leaf({ Instruction::Character, character });
    }
}

Regexp::Node Regexp::Parser::parseGroup()
{
    if (++m_depth > deepestGroup)
        throw std::invalid_argument("ORA-12733: 正则表达式太复杂");
    Node node = parseAlternatives();
    --m_depth;
    if (!accept(U')'))
        throw std::invalid_argument("ORA-12725: 正则表达式中的小括号不匹配");
    return node;
}

Regexp::Node Regexp::Parser::parseEscape()
{
    if (atEnd())
        throw std::invalid_argument("ORA-12727: 正则表达式以反斜杠结束");
    const char32_t letter = m_pattern[m_position++];
    const bool negated = letter == U'D' || letter == U'W' || letter == U'S';
    switch (letter) {
    case U'd':
    case U'D':
        return setNode({ { { U'0', U'9' } }, negated });
    case U'w':
    case U'W':
        return setNode({ { { U'0', U'9' }, { U'A', U'Z' }, { U'_', U'_' }, { U'a', U'z' }, { 0xC0, 0x10FFFF } }, negated });
    case U's':
    case U'S':
        return setNode({ { { U'\t', U'\r' }, { U' ', U' ' } }, negated });
    default:
        break;
    }
    if (letter >= U'1' && letter <= U'9')
        throw std::invalid_argument("ORA-12727: 正则表达式不支持反向引用");
    return { .kind = Node::Leaf, .leaf = { Instruction::Character, letter } };
}

Regexp::Node Regexp::Parser::setNode(Set set)
{
    m_sets.push_back(std::move(set));
    return { .kind = Node::Leaf, .leaf = { Instruction::InSet, std::uint32_t(m_sets.size() - 1) } };
}

Regexp::Node Regexp::Parser::parseSet()
{
    Set set { .negated = accept(U'^') };
    // A bracket right at the beginning stands for itself.
    bool first = true;
    while (first || peek() != U']') {
        if (atEnd())
            throw std::invalid_argument("ORA-12726: 正则表达式中的方括号不匹配");
        parseSetItem(set);
        first = false;
    }
    ++m_position;
    return setNode(std::move(set));
}

void Regexp::Parser::parseSetItem(Set &set)
{
    if (parseClass(set))
        return;
    const char32_t begin = m_pattern[m_position++];
    char32_t end = begin;
    if (peek() == U'-' && m_position + 1 < m_pattern.size() && peek(1) != U']') {
        end = peek(1);
        m_position += 2;
    }
    if (end < begin)
        throw std::invalid_argument("ORA-12728: 正则表达式中的范围无效");
    set.ranges.push_back({ begin, end });
}

bool Regexp::Parser::parseClass(Set &set)
{
    if (peek() != U'[' || peek(1) != U':')
        return false;
    const std::size_t end = m_pattern.find(U":]", m_position + 2);
    for (const NamedClass &named : namedClasses) {
        if (end == std::u32string_view::npos || m_pattern.substr(m_position + 2, end - m_position - 2) != named.name)
            continue;
        for (std::size_t pair = 0; pair + 1 < named.ranges.size(); pair += 2)
            set.ranges.push_back({ named.ranges[pair], named.ranges[pair + 1] });
        m_position = end + 2;
        return true;
    }
    throw std::invalid_argument("ORA-12729: 正则表达式中的字符类无效");
}

Regexp::Node Regexp::Parser::repeated(Node node)
{
    int fewest = 0;
    int most = 0;
    while (parseBounds(fewest, most)) {
        Node repeat { .kind = Node::Repeat, .fewest = fewest, .most = most };
        repeat.children.push_back(std::move(node));
        node = std::move(repeat);
    }
    return node;
}

/// A repetition sign, if one follows.
bool Regexp::Parser::parseBounds(int &fewest, int &most)
{
    fewest = peek() == U'+' ? 1 : 0;
    most = peek() == U'?' ? 1 : -1;
    if (accept(U'*') || accept(U'+') || accept(U'?'))
        return true;
    if (peek() != U'{' || peek(1) < U'0' || peek(1) > U'9')
        return false;
    ++m_position;
    fewest = parseNumber();
    most = fewest;
    if (accept(U','))
        most = peek() == U'}' ? -1 : parseNumber();
    if (!accept(U'}') || (most >= 0 && most < fewest))
        throw std::invalid_argument("ORA-12728: 正则表达式中的重复次数无效");
    return true;
}

int Regexp::Parser::parseNumber()
{
    int number = 0;
    const std::size_t begin = m_position;
    while (peek() >= U'0' && peek() <= U'9' && number <= mostRepeats)
        number = number * 10 + int(m_pattern[m_position++] - U'0');
    if (m_position == begin || number > mostRepeats)
        throw std::invalid_argument("ORA-12728: 正则表达式中的重复次数无效");
    return number;
}

} // namespace engine
