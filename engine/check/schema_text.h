#pragma once

#include <string_view>

namespace engine {

/// The text of demo/schema.sql.
extern const std::string_view schemaText;

} // namespace engine
