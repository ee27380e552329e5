#pragma once

#include <cstddef>

namespace packet::test {

/// The most bytes that anything in the program took at once by `new` since forgetAllocations().
std::size_t largestAllocation();
void forgetAllocations();

} // namespace packet::test
