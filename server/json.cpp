#include "server/json.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace server {

namespace {

/// Thrown at the first byte that does not belong there.
struct Malformed { };

class Reader {
public:
    explicit Reader(std::string_view json)
        : m_rest(json)
    {
    }

    std::map<std::string, std::string> object()
    {
        std::map<std::string, std::string> texts;
        expect('{');
        if (!taken('}')) {
            do {
                std::string name = text();
                expect(':');
                if (!texts.emplace(std::move(name), text()).second)
                    throw Malformed();
            } while (taken(','));
            expect('}');
        }
        skipBlanks();
        if (!m_rest.empty())
            throw Malformed();
        return texts;
    }

private:
    void skipBlanks() { m_rest.remove_prefix(std::min(m_rest.find_first_not_of(" \t\r\n"), m_rest.size())); }
    bool taken(char wanted)
    {
        skipBlanks();
        if (m_rest.empty() || m_rest.front() != wanted)
            return false;
        m_rest.remove_prefix(1);
        return true;
    }
    void expect(char wanted)
    {
        if (!taken(wanted))
            throw Malformed();
    }
    char next()
    {
        if (m_rest.empty())
            throw Malformed();
        const char byte = m_rest.front();
        m_rest.remove_prefix(1);
        return byte;
    }

    std::string text()
    {
        expect('"');
        std::string read;
        for (char byte = next(); byte != '"'; byte = next()) {
            if (byte >= 0 && byte < ' ')
                throw Malformed();
            if (byte == '\\')
                appendEscaped(read);
            else
                read += byte;
        }
        return read;
    }
    void appendEscaped(std::string &out)
    {
        constexpr std::string_view letters = "\"\\/bfnrt";
        constexpr std::string_view meanings = "\"\\/\b\f\n\r\t";
        const char letter = next();
        if (letter == 'u')
            return appendUnit(unit(), out);
        const std::size_t at = letters.find(letter);
        if (at == std::string_view::npos)
            throw Malformed();
        out += meanings[at];
    }
    /// A character of two UTF-16 units is written as two escapes.
    void appendUnit(std::uint32_t code, std::string &out)
    {
        if (code >= 0xD800 && code < 0xDC00) {
            if (next() != '\\' || next() != 'u')
                throw Malformed();
            const std::uint32_t low = unit();
            if (low < 0xDC00 || low > 0xDFFF)
                throw Malformed();
            code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
        } else if (code >= 0xDC00 && code < 0xE000) {
            throw Malformed();
        }
        appendUtf8(code, out);
    }
    std::uint32_t unit()
    {
        std::uint32_t code = 0;
        for (int digit = 0; digit < 4; ++digit) {
            const char byte = next();
            const char small = char(byte | 0x20);
            if (byte >= '0' && byte <= '9')
                code = code << 4 | std::uint32_t(byte - '0');
            else if (small >= 'a' && small <= 'f')
                code = code << 4 | std::uint32_t(small - 'a' + 10);
            else
                throw Malformed();
        }
        return code;
    }
    static void appendUtf8(std::uint32_t code, std::string &out)
    {
        if (code < 0x80) {
            out += char(code);
            return;
        }
        const int following = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
        constexpr std::array<std::uint8_t, 4> leads { 0, 0xC0, 0xE0, 0xF0 };
        out += char(leads[std::size_t(following)] | code >> (6 * following));
        for (int left = following; left-- > 0;)
            out += char(0x80 | (code >> (6 * left) & 0x3F));
    }

    std::string_view m_rest;
};

/// The bytes of the character at the beginning when it may stand in a JSON string as it is; 0 when it has to be escaped or is broken.
std::size_t plainSize(std::string_view text)
{
    const auto first = std::uint8_t(text.front());
    if (first < 0x80)
        return first >= ' ' && first != '"' && first != '\\' ? 1 : 0;
    const std::size_t size = first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF5 ? 4 : 0;
    if (size == 0 || size > text.size())
        return 0;
    const auto isFollowing = [](char byte) { return (byte & 0xC0) == 0x80; };
    if (!std::all_of(text.begin() + 1, text.begin() + std::ptrdiff_t(size), isFollowing))
        return 0;
    const auto second = std::uint8_t(text[1]);
    const bool isBroken = (first == 0xE0 && second < 0xA0) || (first == 0xED && second >= 0xA0) || (first == 0xF0 && second < 0x90)
        || (first == 0xF4 && second >= 0x90);
    return isBroken ? 0 : size;
}

void appendEscape(char byte, std::string &out)
{
    constexpr std::string_view digits = "0123456789abcdef";
    if (byte < 0) {
        out += "\uFFFD";
    } else if (byte == '"' || byte == '\\') {
        out += '\\';
        out += byte;
    } else {
        out += "\\u00";
        out += digits[std::size_t(byte) >> 4];
        out += digits[std::size_t(byte) & 15];
    }
}

} // namespace

std::optional<std::map<std::string, std::string>> readJsonTexts(std::string_view json)
{
    try {
        return Reader(json).object();
    } catch (const Malformed &) {
        return std::nullopt;
    }
}

void appendJsonText(std::string_view text, std::string &out)
{
    out += '"';
    std::size_t begin = 0; // of what has not been appended yet
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t size = plainSize(text.substr(at));
        if (size > 0) {
            at += size;
            continue;
        }
        out.append(text, begin, at - begin);
        appendEscape(text[at], out);
        begin = ++at;
    }
    out.append(text, begin);
    out += '"';
}

std::string jsonText(std::string_view text)
{
    std::string out;
    appendJsonText(text, out);
    return out;
}

} // namespace server
