#include "allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> largest = 0;

} // namespace

void *operator new(std::size_t size)
{
    if (size > largest)
        largest = size;
    if (void *const place = std::malloc(size == 0 ? 1 : size))
        return place;
    throw std::bad_alloc();
}
void operator delete(void *place) noexcept { std::free(place); }
void operator delete(void *place, std::size_t) noexcept { std::free(place); }

namespace packet::test {

std::size_t largestAllocation() { return largest; }
void forgetAllocations() { largest = 0; }

} // namespace packet::test
