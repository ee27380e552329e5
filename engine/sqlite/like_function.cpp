#include "engine/sqlite/function_support.h"
#include "engine/sqlite/statement_budget.h"
#include "packet/utf8.h"

namespace engine::functions {

namespace {

/// One element of a pattern.
struct Element {
    enum Kind { Character, AnyCharacter, AnyText } kind = Character;
    std::string_view bytes {}; ///< of a character
    std::size_t size = 0; ///< of the element in the pattern
};

class Pattern {
public:
    Pattern(std::string_view pattern, std::string_view escape)
        : m_pattern(pattern)
        , m_escape(escape)
    {
    }
    bool atEnd(std::size_t position) const { return position == m_pattern.size(); }
    Element at(std::size_t position) const
    {
        const std::string_view first = packet::characterAt(m_pattern, position);
        if (!m_escape.empty() && first == m_escape) {
            const std::size_t next = position + first.size();
            if (next == m_pattern.size()
                || (m_pattern[next] != '%' && m_pattern[next] != '_' && !m_pattern.substr(next).starts_with(m_escape)))
                throw OracleError("ORA-01424: 转义符之后字符缺失或非法");
            const std::string_view escaped = packet::characterAt(m_pattern, next);
            return { Element::Character, escaped, first.size() + escaped.size() };
        }
        if (first == "%")
            return { Element::AnyText, {}, 1 };
        if (first == "_")
            return { Element::AnyCharacter, {}, 1 };
        return { Element::Character, first, first.size() };
    }

private:
    std::string_view m_pattern;
    std::string_view m_escape;
};

/// What follows the last % is tried at every place; what stood before it need not be tried again.
bool matches(std::string_view text, const Pattern &pattern)
{
    constexpr std::size_t none = std::string_view::npos;
    std::size_t inText = 0;
    std::size_t inPattern = 0;
    std::size_t retryText = none;
    std::size_t retryPattern = 0;
    while (inText < text.size() || !pattern.atEnd(inPattern)) {
        StatementBudget::work(8);
        if (!pattern.atEnd(inPattern)) {
            const Element element = pattern.at(inPattern);
            if (element.kind == Element::AnyText) {
                inPattern += element.size;
                retryText = inText;
                retryPattern = inPattern;
                continue;
            }
            const bool same
                = inText < text.size() && (element.kind == Element::AnyCharacter || text.substr(inText).starts_with(element.bytes));
            if (same) {
                inText += element.kind == Element::AnyCharacter ? packet::characterAt(text, inText).size() : element.bytes.size();
                inPattern += element.size;
                continue;
            }
        }
        if (retryText == none || retryText >= text.size())
            return false;
        retryText += packet::characterAt(text, retryText).size();
        inText = retryText;
        inPattern = retryPattern;
    }
    return true;
}

/// "text like pattern" calls like(pattern, text). SQLite's own would not end before its last character, whatever the time.
void like(sqlite3_context *context, Arguments arguments)
{
    for (sqlite3_value *value : arguments) {
        if (isNull(value))
            return;
    }
    const std::string escape = arguments.size() > 2 ? textOf(arguments[2]) : std::string();
    if (arguments.size() > 2 && (escape.empty() || packet::characterAt(escape, 0).size() != escape.size()))
        throw OracleError("ORA-01425: 转义符必须是长度为 1 的字符串");
    const std::string pattern = textOf(arguments[0]);
    sqlite3_result_int(context, matches(textOf(arguments[1]), Pattern(pattern, escape)));
}

} // namespace

void addLikeFunction(sqlite3 *database)
{
    add(database, "like", 2, like);
    add(database, "like", 3, like);
}

} // namespace engine::functions
