#pragma once

#include <cstdint>

/// Bytes of the process that lie in memory, after what was freed has been given back; 0 where the system does not tell.
std::int64_t residentBytes();
