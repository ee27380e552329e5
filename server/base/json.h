#pragma once

#include "packet/text.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace server {

/// The texts of one flat JSON object, by name. Nothing unless the text is exactly one object (RFC 8259) whose values are all
/// texts and whose names differ.
std::optional<std::map<std::string, std::string>> readJsonTexts(std::string_view json);

using packet::appendJsonText;
/// The text as a JSON string, quotes included.
std::string jsonText(std::string_view text);

} // namespace server
