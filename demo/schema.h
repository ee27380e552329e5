#pragma once

#include <string_view>

namespace demo {

/// The text of schema.sql: every table, then every index.
extern const std::string_view schema;

} // namespace demo
