#include "packet/utf8.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

namespace packet {

namespace {

constexpr std::uint64_t highBits = 0x8080808080808080u;

/// The bytes of the character at `bytes`, of which `left` can be read; 0 when there is no valid one.
std::size_t characterSize(const unsigned char *bytes, std::size_t left)
{
    const auto follows = [bytes](std::size_t position) { return (bytes[position] & 0xC0) == 0x80; };
    const unsigned char first = bytes[0];
    if (first >= 0xE0 && first <= 0xEF) {
        if (left < 3 || !follows(1) || !follows(2))
            return 0;
        return (first == 0xE0 && bytes[1] < 0xA0) || (first == 0xED && bytes[1] > 0x9F) ? 0 : 3;
    }
    if (first < 0x80)
        return 1;
    if (first >= 0xC2 && first <= 0xDF)
        return left >= 2 && follows(1) ? 2 : 0;
    if (first < 0xF0 || first > 0xF4 || left < 4)
        return 0;
    const bool inRange = (first != 0xF0 || bytes[1] >= 0x90) && (first != 0xF4 || bytes[1] <= 0x8F);
    return inRange && follows(1) && follows(2) && follows(3) ? 4 : 0;
}

} // namespace

std::size_t characterSize(std::string_view text)
{
    return text.empty() ? 0 : characterSize(reinterpret_cast<const unsigned char *>(text.data()), text.size());
}

std::string_view characterAt(std::string_view text, std::size_t position)
{
    const std::string_view rest = text.substr(position);
    return rest.substr(0, std::max<std::size_t>(characterSize(rest), 1));
}

char32_t codePointOf(std::string_view character)
{
    const auto first = std::uint8_t(character.front());
    if (character.size() == 1)
        return first;
    char32_t code = first & (0x7Fu >> character.size());
    for (const char following : character.substr(1))
        code = code << 6 | (std::uint8_t(following) & 0x3F);
    return code;
}

bool isUtf8(std::string_view text)
{
    const auto *bytes = reinterpret_cast<const unsigned char *>(text.data());
    const unsigned char *const end = bytes + text.size();
    while (true) {
        std::uint64_t word = 0;
        while (end - bytes >= std::ptrdiff_t(sizeof word)) {
            std::memcpy(&word, bytes, sizeof word);
            word &= highBits;
            if (word != 0)
                break;
            bytes += sizeof word;
        }
        bytes += word == 0 ? 0 : std::countr_zero(word) / 8;
        if (bytes == end)
            return true;
        // Where there is one Han character, there are mostly more.
        do {
            const std::size_t size = characterSize(bytes, std::size_t(end - bytes));
            if (size == 0)
                return false;
            bytes += size;
        } while (bytes != end && *bytes >= 0x80);
    }
}

} // namespace packet
