#pragma once

#include <algorithm>
#include <string_view>

namespace options {

/// The keys of the client's file of settings that a server may set for its clients: none that names a file or another server.
constexpr std::string_view centreSettings[] = { "compress", "printer", "text_size", "theme" };

inline bool isCentreSetting(std::string_view key) { return std::ranges::find(centreSettings, key) != std::end(centreSettings); }

} // namespace options
