#include "engine/odbc/wide_text.h"

#include "packet/utf8.h"

namespace engine::odbc {

namespace {

constexpr char32_t replacement = 0xFFFD;

/// Writes a character and returns the place behind it.
char *written(char32_t code, char *to)
{
    if (code < 0x80) {
        *to++ = char(code);
    } else if (code < 0x800) {
        *to++ = char(0xC0 | code >> 6);
        *to++ = char(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        *to++ = char(0xE0 | code >> 12);
        *to++ = char(0x80 | (code >> 6 & 0x3F));
        *to++ = char(0x80 | (code & 0x3F));
    } else {
        *to++ = char(0xF0 | code >> 18);
        *to++ = char(0x80 | (code >> 12 & 0x3F));
        *to++ = char(0x80 | (code >> 6 & 0x3F));
        *to++ = char(0x80 | (code & 0x3F));
    }
    return to;
}

bool isHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool isLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

} // namespace

std::vector<SQLWCHAR> wideOf(std::string_view text)
{
    std::vector<SQLWCHAR> wide;
    wide.reserve(text.size() + 1);
    for (std::size_t position = 0; position < text.size();) {
        const std::string_view character = packet::characterAt(text, position);
        const char32_t code = packet::isUtf8(character) ? packet::codePointOf(character) : replacement;
        position += character.size();
        if (code >= 0x10000) {
            wide.push_back(SQLWCHAR(0xD800 + ((code - 0x10000) >> 10)));
            wide.push_back(SQLWCHAR(0xDC00 + (code & 0x3FF)));
        } else {
            wide.push_back(SQLWCHAR(code));
        }
    }
    wide.push_back(0);
    return wide;
}

void appendText(const SQLWCHAR *characters, std::size_t size, std::string &out)
{
    constexpr std::size_t mostBytes = 3; ///< of one unit
    const std::size_t before = out.size();
    out.resize(before + size * mostBytes);
    char *to = out.data() + before;
    for (std::size_t position = 0; position < size; ++position) {
        const char32_t unit = characters[position];
        if (!isHighSurrogate(unit) && !isLowSurrogate(unit)) {
            to = written(unit, to);
        } else if (isHighSurrogate(unit) && position + 1 < size && isLowSurrogate(characters[position + 1])) {
            to = written(0x10000 + ((unit - 0xD800) << 10) + (characters[position + 1] - 0xDC00), to);
            ++position;
        } else {
            to = written(replacement, to);
        }
    }
    out.resize(std::size_t(to - out.data()));
}

} // namespace engine::odbc
