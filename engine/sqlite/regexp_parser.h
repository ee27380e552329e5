#pragma once

#include "engine/sqlite/regexp.h"

namespace engine {

struct Regexp::Node {
    enum Kind : std::uint8_t { Sequence, Alternatives, Repeat, Leaf } kind = Sequence;
    std::vector<Node> children {};
    Instruction leaf { Instruction::Any };
    int fewest = 0;
    int most = 0; ///< unbounded = -1
};

/// Reads the pattern; the sets it meets go to `sets`.
class Regexp::Parser {
public:
    Parser(std::u32string_view pattern, std::vector<Set> &sets)
        : m_pattern(pattern)
        , m_sets(sets)
    {
    }
    Node run();

private:
    Node parseAlternatives();
    Node parseSequence();
    Node parseAtom();
    Node parseGroup();
    Node parseEscape();
    Node parseSet();
    void parseSetItem(Set &set);
    bool parseClass(Set &set);
    Node repeated(Node node);
    bool parseBounds(int &fewest, int &most);
    int parseNumber();
    Node setNode(Set set);

    bool atEnd() const { return m_position == m_pattern.size(); }
    char32_t peek(std::size_t ahead = 0) const { return m_position + ahead < m_pattern.size() ? m_pattern[m_position + ahead] : 0; }
    bool accept(char32_t character);

    std::u32string_view m_pattern;
    std::vector<Set> &m_sets;
    std::size_t m_position = 0;
    int m_depth = 0;
};

} // namespace engine
