#pragma once

#include <cstddef>
#include <string_view>

namespace packet {

/// True when all of it is UTF-8: no overlong forms, no surrogates, nothing beyond U+10FFFF, no character cut off.
bool isUtf8(std::string_view bytes);

/// The bytes of the character that the text begins with; 0 when it begins with none that is valid and whole, or is empty.
std::size_t characterSize(std::string_view text);

/// The character that begins at `position`; a single byte where none that is valid and whole does.
std::string_view characterAt(std::string_view text, std::size_t position);

/// The code point of such a character; of a single byte the byte.
char32_t codePointOf(std::string_view character);

/// True when a character begins with this byte of valid UTF-8.
constexpr bool beginsCharacter(char byte) { return (byte & 0xC0) != 0x80; }

} // namespace packet
