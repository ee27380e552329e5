#pragma once

#include "engine/gate/parser.h"

namespace engine::gate {

/// Counts one level of nesting as long as it lives.
class Parser::Nesting {
public:
    explicit Nesting(Parser &parser)
        : m_depth(parser.m_depth)
    {
        if (++m_depth > deepestNesting)
            throw Refusal(parser.peek().begin, "的嵌套超过 " + std::to_string(deepestNesting) + " 层");
    }
    Nesting(const Nesting &) = delete;
    ~Nesting() { --m_depth; }

private:
    int &m_depth;
};

} // namespace engine::gate
