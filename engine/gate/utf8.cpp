#include "engine/gate/utf8.h"

#include "engine/gate/lexer.h"

#include <cstring>

namespace engine::gate {

namespace {

constexpr std::uint64_t repeated(std::uint8_t byte) { return 0x0101010101010101u * byte; }

/// True when all eight bytes are printable ASCII: none below 0x20, none from 0x7F on.
bool plain(const char *bytes)
{
    std::uint64_t word;
    std::memcpy(&word, bytes, sizeof word);
    const std::uint64_t high = repeated(0x80);
    return ((word | (word + repeated(0x01)) | (word - repeated(0x20))) & high) == 0;
}

/// The bytes of the character that a first byte announces; 0 when none can begin so.
std::size_t announcedSize(std::uint8_t first)
{
    if (first < 0x80)
        return 1;
    if (first >= 0xC2 && first <= 0xDF)
        return 2;
    if (first >= 0xE0 && first <= 0xEF)
        return 3;
    return first >= 0xF0 && first <= 0xF4 ? 4 : 0;
}

bool isValid(std::string_view text, std::size_t position)
{
    const std::size_t size = announcedSize(std::uint8_t(text[position]));
    if (size == 0 || position + size > text.size())
        return false;
    for (std::size_t following = 1; following < size; ++following) {
        if ((std::uint8_t(text[position + following]) & 0xC0) != 0x80)
            return false;
    }
    const char32_t code = codePointAt(text, position);
    constexpr char32_t smallest[] = { 0, 0, 0x80, 0x800, 0x10000 };
    return code >= smallest[size] && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
}

} // namespace

std::string_view characterAt(std::string_view text, std::size_t position)
{
    return text.substr(position, announcedSize(std::uint8_t(text[position])));
}

char32_t codePointAt(std::string_view text, std::size_t position)
{
    const std::string_view character = characterAt(text, position);
    const auto first = std::uint8_t(character[0]);
    if (character.size() == 1)
        return first;
    char32_t code = first & (0x7Fu >> character.size());
    for (const char following : character.substr(1))
        code = code << 6 | (std::uint8_t(following) & 0x3F);
    return code;
}

bool isHan(char32_t code)
{
    return (code >= 0x4E00 && code <= 0x9FFF) || (code >= 0x3400 && code <= 0x4DBF) || (code >= 0x20000 && code <= 0x3134F);
}

void checkCharacters(std::string_view text)
{
    std::size_t position = 0;
    while (position < text.size()) {
        if (position + 8 <= text.size() && plain(text.data() + position)) {
            position += 8;
            continue;
        }
        const auto first = std::uint8_t(text[position]);
        if ((first < 0x20 && first != '\t' && first != '\n' && first != '\r') || first == 0x7F)
            throw Refusal(position, "有控制字符");
        if (!isValid(text, position))
            throw Refusal(position, "不是有效的 UTF-8 编码");
        const char32_t code = codePointAt(text, position);
        if (code >= 0x80 && code < 0xA0)
            throw Refusal(position, "有控制字符");
        position += announcedSize(first);
    }
}

} // namespace engine::gate
