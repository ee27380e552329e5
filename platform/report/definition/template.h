#pragma once

#include "platform/report/definition/expression.h"

#include <memory>
#include <vector>

namespace report {

/// A text with expressions in brackets, as memos hold it; "[[" is a bracket of the text itself.
class Template {
public:
    /// Throws SyntaxError.
    static Template parse(const QString &text);
    /// The text that shows exactly `text`.
    static QString literal(const QString &text);

    void bind(Binder &binder);
    /// The value when the text is one expression and nothing else, else the joined text, each expression in `format`.
    Value evaluate(const Context &context, const QString &format) const;
    bool isOneExpression() const { return m_parts.size() == 1 && m_parts.front().expression; }

private:
    struct Part {
        QString text {};
        std::unique_ptr<Expression> expression {};
        int offset = 0; ///< of the expression in the text
    };
    std::vector<Part> m_parts;
};

} // namespace report
