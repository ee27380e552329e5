#pragma once

#include <cstdint>
#include <string_view>

namespace engine::gate {

/// Refuses invalid UTF-8 (overlong forms and surrogates too) and every control character but tab, line feed and carriage return.
void checkCharacters(std::string_view text);

} // namespace engine::gate
