#include "engine/sqlite/regexp.h"

#include "engine/sqlite/regexp_parser.h"

#include <algorithm>

namespace engine {

namespace {

constexpr std::size_t longestPattern = 512;
constexpr std::size_t longestProgram = 4096;

char32_t folded(char32_t character) { return character >= U'A' && character <= U'Z' ? character + 32 : character; }

} // namespace

bool Regexp::Set::contains(char32_t character) const
{
    const bool found = std::any_of(
        ranges.begin(), ranges.end(), [character](Range range) { return character >= range.first && character <= range.last; });
    return found != negated;
}

Regexp::Regexp(std::u32string_view pattern, bool ignoreCase)
    : m_ignoreCase(ignoreCase)
{
    if (pattern.size() > longestPattern)
        throw std::invalid_argument("ORA-12733: 正则表达式太长，最多 512 个字符");
    emit(Parser(pattern, m_sets).run());
    add({ Instruction::Match });
}

std::uint32_t Regexp::add(Instruction instruction)
{
    if (m_program.size() >= longestProgram)
        throw std::invalid_argument("ORA-12733: 正则表达式太复杂");
    m_program.push_back(instruction);
    return std::uint32_t(m_program.size() - 1);
}

void Regexp::emit(const Node &node)
{
    switch (node.kind) {
    case Node::Leaf:
        add(node.leaf);
        return;
    case Node::Repeat:
        emitRepeat(node);
        return;
    case Node::Sequence:
        // An empty sequence still takes an instruction, so that repeating it meets the limit of the program.
        if (node.children.empty())
            add({ Instruction::Jump, 0, std::uint32_t(m_program.size() + 1) });
        for (const Node &child : node.children)
            emit(child);
        return;
    case Node::Alternatives:
        break;
    }
    std::vector<std::uint32_t> jumps;
    for (std::size_t child = 0; child + 1 < node.children.size(); ++child) {
        const std::uint32_t split = add({ Instruction::Split });
        emit(node.children[child]);
        jumps.push_back(add({ Instruction::Jump }));
        m_program[split].target = std::uint32_t(m_program.size());
    }
    emit(node.children.back());
    for (const std::uint32_t jump : jumps)
        m_program[jump].target = std::uint32_t(m_program.size());
}

void Regexp::emitRepeat(const Node &node)
{
    const Node &body = node.children.front();
    for (int count = 0; count < node.fewest; ++count)
        emit(body);
    if (node.most < 0) {
        const std::uint32_t split = add({ Instruction::Split });
        emit(body);
        add({ Instruction::Jump, 0, split });
        m_program[split].target = std::uint32_t(m_program.size());
        return;
    }
    std::vector<std::uint32_t> splits;
    for (int count = node.fewest; count < node.most; ++count) {
        splits.push_back(add({ Instruction::Split }));
        emit(body);
    }
    for (const std::uint32_t split : splits)
        m_program[split].target = std::uint32_t(m_program.size());
}

bool Regexp::accepts(const Instruction &instruction, char32_t character) const
{
    switch (instruction.code) {
    case Instruction::Any:
        return character != U'\n';
    case Instruction::Character:
        return character == instruction.value || (m_ignoreCase && folded(character) == folded(instruction.value));
    case Instruction::InSet: {
        const Set &set = m_sets[instruction.value];
        if (!m_ignoreCase)
            return set.contains(character);
        const char32_t upper = character >= U'a' && character <= U'z' ? character - 32 : character;
        return set.negated ? set.contains(folded(character)) && set.contains(upper)
                           : set.contains(folded(character)) || set.contains(upper);
    }
    default:
        return false;
    }
}

/// The threads of one search. Each list holds an instruction at most once, ordered by where the threads began.
class Regexp::Run {
public:
    Run(const Regexp &regexp, std::u32string_view text)
        : m_regexp(regexp)
        , m_text(text)
        , m_seen(regexp.m_program.size())
    {
    }

    std::optional<Regexp::Match> find(std::size_t from, Work work)
    {
        for (std::size_t position = from; position <= m_text.size(); ++position) {
            ++m_round;
            if (work)
                work(m_threads.size() + 1);
            m_next.clear();
            for (const Thread thread : m_threads) {
                if (position > from && m_regexp.accepts(m_regexp.m_program[thread.instruction], m_text[position - 1]))
                    follow(thread.instruction + 1, thread.begin, position);
            }
            if (!m_match)
                follow(0, position, position);
            m_threads.swap(m_next);
            if (m_threads.empty() && m_match)
                break;
        }
        return m_match;
    }

private:
    struct Thread {
        std::uint32_t instruction;
        std::size_t begin;
    };

    /// Adds the thread at `instruction`, or those it leads to without reading a character.
    void follow(std::uint32_t instruction, std::size_t begin, std::size_t position)
    {
        m_pending.assign(1, instruction);
        while (!m_pending.empty()) {
            const std::uint32_t current = m_pending.back();
            m_pending.pop_back();
            if (m_seen[current] == m_round || (m_match && begin > m_match->begin))
                continue;
            m_seen[current] = m_round;
            const Instruction &step = m_regexp.m_program[current];
            switch (step.code) {
            case Instruction::Match:
                m_match = { begin, position };
                break;
            case Instruction::Jump:
                m_pending.push_back(step.target);
                break;
            case Instruction::Split:
                m_pending.push_back(step.target);
                m_pending.push_back(current + 1);
                break;
            case Instruction::Begin:
                if (position == 0)
                    m_pending.push_back(current + 1);
                break;
            case Instruction::End:
                if (position == m_text.size())
                    m_pending.push_back(current + 1);
                break;
            default:
                m_next.push_back({ current, begin });
            }
        }
    }

    const Regexp &m_regexp;
    std::u32string_view m_text;
    std::vector<std::uint64_t> m_seen;
    std::uint64_t m_round = 0;
    std::vector<Thread> m_threads;
    std::vector<Thread> m_next;
    std::vector<std::uint32_t> m_pending;
    std::optional<Regexp::Match> m_match;
};

std::optional<Regexp::Match> Regexp::find(std::u32string_view text, std::size_t from, Work work) const
{
    return Run(*this, text).find(from, work);
}

} // namespace engine
