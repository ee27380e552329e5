#pragma once

#include <cstdint>
#include <string_view>

namespace engine::gate {

/// Refuses invalid UTF-8 (overlong forms and surrogates too) and every control character but tab, line feed and carriage return.
void checkCharacters(std::string_view text);

/// The character that begins at `position`, and its code point; the text is valid UTF-8.
std::string_view characterAt(std::string_view text, std::size_t position);
char32_t codePointAt(std::string_view text, std::size_t position);
bool isHan(char32_t codePoint);

} // namespace engine::gate
