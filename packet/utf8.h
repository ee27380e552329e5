#pragma once

#include <string_view>

namespace packet {

/// True when all of it is UTF-8: no overlong forms, no surrogates, nothing beyond U+10FFFF, no character cut off.
bool isUtf8(std::string_view bytes);

/// True when a character begins with this byte of valid UTF-8.
constexpr bool beginsCharacter(char byte) { return (byte & 0xC0) != 0x80; }

} // namespace packet
