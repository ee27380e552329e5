#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Oracle's date masks: yyyy yy mm dd hh24 hh hh12 mi ss, punctuation and "quoted text".
/// Both throw OracleError with Oracle's numbers. Seconds count from 1970.
namespace engine::functions {

std::string formatDate(std::int64_t seconds, std::string_view mask);
/// A text that ends before the mask does leaves the time at midnight.
std::int64_t readDate(std::string_view text, std::string_view mask);

} // namespace engine::functions
