#pragma once

#include <string_view>

namespace server {

/// One line for the operator, on the error stream. To be called from any thread.
void logLine(std::string_view line);

} // namespace server
