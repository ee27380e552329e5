#include "engine/gate/utf8.h"

#include "engine/gate/lexer.h"
#include "packet/utf8.h"

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

} // namespace

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
        const std::string_view character = packet::characterAt(text, position);
        if (!packet::isUtf8(character))
            throw Refusal(position, "不是有效的 UTF-8 编码");
        const char32_t code = packet::codePointOf(character);
        if (code >= 0x80 && code < 0xA0)
            throw Refusal(position, "有控制字符");
        position += character.size();
    }
}

} // namespace engine::gate
