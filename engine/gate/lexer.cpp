#include "engine/gate/lexer.h"

#include "engine/gate/utf8.h"
#include "packet/utf8.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace engine::gate {

namespace {

struct Word {
    std::string_view name; ///< in capitals
    Symbol symbol;
};

constexpr Word words[] = {
    // clang-format off
    { "ALL", Symbol::All }, { "AND", Symbol::And }, { "AS", Symbol::As }, { "ASC", Symbol::Asc },
    { "BETWEEN", Symbol::Between }, { "BY", Symbol::By }, { "CASE", Symbol::Case }, { "CROSS", Symbol::Cross },
    { "DESC", Symbol::Desc }, { "DISTINCT", Symbol::Distinct }, { "ELSE", Symbol::Else }, { "END", Symbol::EndWord },
    { "ESCAPE", Symbol::Escape }, { "EXISTS", Symbol::Exists }, { "FROM", Symbol::From }, { "FULL", Symbol::Full },
    { "GROUP", Symbol::Group }, { "HAVING", Symbol::Having }, { "IN", Symbol::In }, { "INNER", Symbol::Inner },
    { "INTERSECT", Symbol::Intersect }, { "IS", Symbol::Is }, { "JOIN", Symbol::Join }, { "LEFT", Symbol::Left },
    { "LIKE", Symbol::Like }, { "MINUS", Symbol::MinusWord }, { "NATURAL", Symbol::Natural }, { "NOT", Symbol::Not },
    { "NULL", Symbol::Null }, { "ON", Symbol::On }, { "OR", Symbol::Or }, { "ORDER", Symbol::Order },
    { "OUTER", Symbol::Outer }, { "RIGHT", Symbol::Right }, { "SELECT", Symbol::Select }, { "THEN", Symbol::Then },
    { "UNION", Symbol::Union }, { "USING", Symbol::Using }, { "WHEN", Symbol::When }, { "WHERE", Symbol::Where },
    { "WITH", Symbol::With },
    { "FIRST", Symbol::First }, { "LAST", Symbol::Last }, { "NULLS", Symbol::Nulls }, { "ROWNUM", Symbol::Rownum },
    { "SYSDATE", Symbol::Sysdate },
    // clang-format on
};

constexpr std::string_view reservedElsewhere[] = {
    // clang-format off
    "ADD", "ALTER", "ANALYSE", "ANALYZE", "ARRAY", "ASYMMETRIC", "AUTHORIZATION", "AUTOINCREMENT", "BINARY", "BOTH", "CAST",
    "CHARACTER", "CHECK", "COLLATE", "COLLATION", "COLUMN", "COMMIT", "CONCURRENTLY", "CONSTRAINT", "CREATE", "CURRENT_CATALOG",
    "CURRENT_DATE", "CURRENT_ROLE", "CURRENT_SCHEMA", "CURRENT_TIME", "CURRENT_TIMESTAMP", "CURRENT_USER", "DAY", "DEFAULT",
    "DEFERRABLE", "DELETE", "DO", "DROP", "EXCEPT", "FALSE", "FETCH", "FILTER", "FOR", "FOREIGN", "FREEZE", "GLOB", "GRANT",
    "HOUR", "ILIKE", "INDEX", "INDEXED", "INITIALLY", "INSERT", "INTO", "ISNULL", "LATERAL", "LEADING", "LIMIT", "LOCALTIME",
    "LOCALTIMESTAMP", "MATCH", "MINUTE", "MONTH", "NOTHING", "NOTNULL", "OFFSET", "ONLY", "OVER", "OVERLAPS", "PLACING",
    "PRECISION", "PRIMARY", "REFERENCES", "REGEXP", "RETURNING", "SECOND", "SESSION_USER", "SET", "SIMILAR", "SOME",
    "SYMMETRIC", "TABLE", "TABLESAMPLE", "TO", "TRAILING", "TRANSACTION", "TRUE", "UNIQUE", "UPDATE", "USER", "VALUES",
    "VARIADIC", "VARYING", "VERBOSE", "WINDOW", "WITHIN", "WITHOUT", "YEAR",
    // clang-format on
};

constexpr std::size_t longestWord = 17;
constexpr std::size_t slots = 512;

/// Tells words apart by their letters without regard to case: bit 5 is all that the cases differ in.
constexpr std::size_t slotOf(std::string_view name)
{
    std::size_t hash = name.size();
    for (const char letter : name)
        hash = hash * 31 + (std::uint8_t(letter) & 0xDFu);
    return (hash ^ hash >> 9) % slots;
}

class WordTable {
public:
    WordTable()
    {
        for (const Word &word : words)
            add(word);
        for (const std::string_view name : reservedElsewhere)
            add({ name, Symbol::ReservedElsewhere });
    }
    Symbol symbolOf(std::string_view name) const
    {
        if (name.size() < 2 || name.size() > longestWord)
            return Symbol::Name;
        for (std::size_t slot = slotOf(name); !m_slots[slot].name.empty(); slot = (slot + 1) % slots) {
            if (equals(m_slots[slot].name, name))
                return m_slots[slot].symbol;
        }
        return Symbol::Name;
    }

private:
    void add(const Word &word)
    {
        std::size_t slot = slotOf(word.name);
        while (!m_slots[slot].name.empty())
            slot = (slot + 1) % slots;
        m_slots[slot] = word;
    }
    static bool equals(std::string_view capitals, std::string_view name)
    {
        if (capitals.size() != name.size())
            return false;
        for (std::size_t position = 0; position < name.size(); ++position) {
            const char letter = name[position] >= 'a' && name[position] <= 'z' ? char(name[position] - 32) : name[position];
            if (letter != capitals[position])
                return false;
        }
        return true;
    }

    std::array<Word, slots> m_slots {};
};

bool isLetter(char character) { return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z'); }
bool isDigit(char character) { return character >= '0' && character <= '9'; }

bool isHan(char32_t code)
{
    return (code >= 0x4E00 && code <= 0x9FFF) || (code >= 0x3400 && code <= 0x4DBF) || (code >= 0x20000 && code <= 0x3134F);
}

enum class Kind : std::uint8_t { Statement, Condition };

class Lexer {
public:
    Lexer(std::string_view text, Kind kind)
        : m_text(text)
        , m_kind(kind)
    {
        m_tokens.reserve(text.size() / 4 + 16);
    }

    std::vector<Token> run()
    {
        for (skipBlanks(); m_position < m_text.size(); skipBlanks())
            readToken();
        m_tokens.push_back({ Symbol::End, std::uint32_t(m_text.size()), std::uint32_t(m_text.size()) });
        return std::move(m_tokens);
    }

private:
    char at(std::size_t position) const { return position < m_text.size() ? m_text[position] : '\0'; }
    char next() const { return at(m_position + 1); }

    void skipBlanks()
    {
        while (m_position < m_text.size()) {
            const char character = m_text[m_position];
            if (character == ' ' || character == '\t' || character == '\n')
                ++m_position;
            else if (character == '\r')
                skipLineEnd();
            else if (character == '-' && next() == '-')
                skipLineComment();
            else if (character == '/' && next() == '*')
                skipBlockComment();
            else
                return;
        }
    }
    /// What stands behind a condition where it is put would become a part of the comment.
    void refuseCommentInCondition() const
    {
        if (m_kind == Kind::Condition)
            throw Refusal(m_position, "有注释，行规则中不能写注释");
    }
    void skipLineEnd()
    {
        if (next() != '\n')
            throw Refusal(m_position, "有单独的回车符，换行请用换行符");
        m_position += 2;
    }
    void skipLineComment()
    {
        refuseCommentInCondition();
        const std::size_t end = std::min(m_text.find('\n', m_position), m_text.size());
        const std::size_t carriageReturn = m_text.substr(0, end).find('\r', m_position);
        if (carriageReturn != std::string_view::npos && (carriageReturn + 1 != end || end == m_text.size()))
            throw Refusal(carriageReturn, "注释中有单独的回车符");
        m_position = end;
    }
    void skipBlockComment()
    {
        refuseCommentInCondition();
        const std::size_t end = m_text.find("*/", m_position + 2);
        if (end == std::string_view::npos)
            throw Refusal(m_position, "的注释没有结束，缺少“*/”");
        const std::size_t nested = m_text.substr(0, end + 1).find("/*", m_position + 2);
        if (nested != std::string_view::npos)
            throw Refusal(nested, "在注释中又开始注释，注释不能嵌套");
        m_position = end + 2;
    }

    void readToken()
    {
        const char character = m_text[m_position];
        if (isLetter(character) || character == '_' || std::uint8_t(character) >= 0x80)
            return readName();
        if (character == '\'')
            return readText();
        if (isDigit(character) || (character == '.' && isDigit(next())))
            return readNumber();
        if (character == '"')
            return readQuotedName();
        readSymbol(character);
    }

    void add(Symbol symbol, std::size_t end)
    {
        m_tokens.push_back({ symbol, std::uint32_t(m_position), std::uint32_t(end) });
        m_position = end;
    }

    /// The end of the letters, digits, underlines and Han characters that start at `position`.
    std::size_t nameEnd(std::size_t position) const
    {
        while (position < m_text.size()) {
            const char character = m_text[position];
            if (isLetter(character) || isDigit(character) || character == '_') {
                ++position;
            } else if (std::uint8_t(character) >= 0x80) {
                const std::string_view wide = packet::characterAt(m_text, position);
                if (!isHan(packet::codePointOf(wide)))
                    throw Refusal(position, "的字符“" + std::string(wide) + "”不能出现在引号之外");
                position += wide.size();
            } else {
                break;
            }
        }
        return position;
    }
    void readName()
    {
        static const WordTable table;
        const std::size_t end = nameEnd(m_position);
        const Symbol symbol = table.symbolOf(m_text.substr(m_position, end - m_position));
        const bool name = symbol == Symbol::Name || symbol >= Symbol::First;
        if (name && at(end) == '\'')
            throw Refusal(m_position, "的引号前带有前缀“" + std::string(m_text.substr(m_position, end - m_position)) + "”");
        add(symbol, end);
    }
    void readText()
    {
        std::size_t end = m_position;
        do {
            end = m_text.find('\'', end + 1);
            if (end == std::string_view::npos)
                throw Refusal(m_position, "的单引号没有配对");
            ++end;
        } while (at(end) == '\'');
        add(Symbol::Text, end);
    }
    void readQuotedName()
    {
        const std::size_t end = m_text.find('"', m_position + 1);
        if (end == std::string_view::npos || end == m_position + 1 || at(end + 1) == '"')
            throw Refusal(m_position, "的双引号不成对或其中没有名称");
        add(Symbol::QuotedName, end + 1);
    }
    void readNumber()
    {
        std::size_t end = m_position;
        const auto skipDigits = [&] {
            while (isDigit(at(end)))
                ++end;
        };
        skipDigits();
        if (at(end) == '.') {
            ++end;
            skipDigits();
        }
        const bool sign = at(end + 1) == '+' || at(end + 1) == '-';
        if ((at(end) == 'e' || at(end) == 'E') && isDigit(at(end + 1 + sign))) {
            end += 1 + sign;
            skipDigits();
        }
        if (isLetter(at(end)) || at(end) == '_' || at(end) == '.' || at(end) == '\'' || std::uint8_t(at(end)) >= 0x80)
            throw Refusal(m_position, "的数字“" + std::string(m_text.substr(m_position, end + 1 - m_position)) + "…”写法有误");
        add(Symbol::Number, end);
    }
    void readPlaceholder()
    {
        const std::size_t end = nameEnd(m_position + 1);
        const std::string_view name = m_text.substr(m_position, end - m_position);
        if (name != ":sites" && name != ":site" && name != ":employee")
            throw Refusal(m_position, "的“" + std::string(name) + "”无法识别，占位符只有 :sites、:site 和 :employee");
        add(Symbol::Placeholder, end);
    }
    void readSymbol(char character)
    {
        const char second = next();
        switch (character) {
        case '(':
            return add(Symbol::LeftParenthesis, m_position + 1);
        case ')':
            return add(Symbol::RightParenthesis, m_position + 1);
        case ',':
            return add(Symbol::Comma, m_position + 1);
        case '.':
            return add(Symbol::Dot, m_position + 1);
        case '+':
            return add(Symbol::Plus, m_position + 1);
        case '-':
            return add(Symbol::Minus, m_position + 1);
        case '*':
            return add(Symbol::Star, m_position + 1);
        case '/':
            return add(Symbol::Slash, m_position + 1);
        case '=':
            return add(Symbol::Equal, m_position + 1);
        case '<':
            if (second == '>')
                return add(Symbol::Unequal, m_position + 2);
            return second == '=' ? add(Symbol::LessEqual, m_position + 2) : add(Symbol::Less, m_position + 1);
        case '>':
            return second == '=' ? add(Symbol::GreaterEqual, m_position + 2) : add(Symbol::Greater, m_position + 1);
        case '!':
            if (second == '=')
                return add(Symbol::Unequal, m_position + 2);
            break;
        case '|':
            if (second == '|')
                return add(Symbol::Concat, m_position + 2);
            break;
        case ':':
            if (m_kind == Kind::Condition)
                return readPlaceholder();
            break;
        case ';':
            throw Refusal(m_position, "有分号；一次只能执行一条查询语句，语句末尾不要写分号");
        default:
            break;
        }
        throw Refusal(m_position, "的符号“" + std::string(1, character) + "”不允许使用");
    }

    std::string_view m_text;
    Kind m_kind;
    std::size_t m_position = 0;
    std::vector<Token> m_tokens;
};

} // namespace

std::vector<Token> tokensOf(std::string_view text)
{
    checkCharacters(text);
    return Lexer(text, Kind::Statement).run();
}

std::vector<Token> conditionTokensOf(std::string_view text)
{
    checkCharacters(text);
    return Lexer(text, Kind::Condition).run();
}

} // namespace engine::gate
