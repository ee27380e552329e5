#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace engine {

/// A POSIX extended regular expression, compiled to a nondeterministic automaton. The longest of the leftmost matches is
/// found in time pattern * text whatever the pattern, without backtracking or recursion (Thompson 1968; Cox, "Regular
/// Expression Matching: the Virtual Machine Approach"). Beside POSIX it knows \d \w \s and their capitals, as Oracle does.
class Regexp {
public:
    struct Match {
        std::size_t begin; ///< in characters
        std::size_t end;
    };

    /// Throws std::invalid_argument, in Oracle's words.
    Regexp(std::u32string_view pattern, bool ignoreCase);
    /// `work` is called with the number of steps that were made since its last call; it may throw.
    using Work = void (*)(std::size_t steps);
    std::optional<Match> find(std::u32string_view text, std::size_t from, Work work = nullptr) const;

private:
    struct Range {
        char32_t first;
        char32_t last;
    };
    struct Set {
        std::vector<Range> ranges {};
        bool negated = false;
        bool contains(char32_t character) const;
    };
    struct Instruction {
        enum Code : std::uint8_t { Character, Any, InSet, Begin, End, Split, Jump, Match } code;
        std::uint32_t value = 0; ///< character or number of the set
        std::uint32_t target = 0; ///< of a jump; the second way of a split
    };
    struct Node;
    class Parser;
    class Run;

    void emit(const Node &node);
    void emitRepeat(const Node &node);
    std::uint32_t add(Instruction instruction);
    bool accepts(const Instruction &instruction, char32_t character) const;

    std::vector<Instruction> m_program;
    std::vector<Set> m_sets;
    bool m_ignoreCase;
};

} // namespace engine
