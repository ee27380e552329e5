#include "engine/sqlite/memory_methods.h"

#include "engine/sqlite/statement_budget.h"

#include <sqlite3.h>

#include <cstdlib>

namespace engine::memory {

namespace {

/// Before every piece stands its size.
struct alignas(std::max_align_t) Header {
    std::size_t size;
};

Header *headerOf(void *piece) { return static_cast<Header *>(piece) - 1; }

void count(std::int64_t bytes)
{
    if (StatementBudget *const budget = StatementBudget::current())
        budget->take(bytes);
}

bool mayTake(std::size_t bytes)
{
    StatementBudget *const budget = StatementBudget::current();
    return !budget || budget->mayTake(bytes);
}

void *allocate(int size)
{
    if (!mayTake(std::size_t(size)))
        return nullptr;
    auto *const header = static_cast<Header *>(std::malloc(sizeof(Header) + std::size_t(size)));
    if (!header)
        return nullptr;
    header->size = std::size_t(size);
    count(std::int64_t(sizeof(Header)) + size);
    return header + 1;
}

void release(void *piece)
{
    if (!piece)
        return;
    count(-std::int64_t(sizeof(Header) + headerOf(piece)->size));
    std::free(headerOf(piece));
}

void *resize(void *piece, int size)
{
    const std::size_t before = headerOf(piece)->size;
    const auto wanted = std::size_t(size);
    if (wanted > before && !mayTake(wanted - before))
        return nullptr;
    auto *const header = static_cast<Header *>(std::realloc(headerOf(piece), sizeof(Header) + wanted));
    if (!header)
        return nullptr;
    header->size = wanted;
    count(std::int64_t(wanted) - std::int64_t(before));
    return header + 1;
}

int sizeOf(void *piece) { return piece ? int(headerOf(piece)->size) : 0; }
int roundUp(int size) { return (size + 7) & ~7; }
int start(void *) { return SQLITE_OK; }
void stop(void *) { }

constexpr sqlite3_mem_methods methods { allocate, release, resize, sizeOf, roundUp, start, stop, nullptr };

/// SQLite takes no other methods once it is in use. Its own counting would hold one lock for all connections at each piece, so that a
/// statement which yields the processor could hold up all others.
const bool counted = sqlite3_config(SQLITE_CONFIG_MALLOC, &methods) == SQLITE_OK && sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0) == SQLITE_OK;

} // namespace

bool isCounted() { return counted; }

} // namespace engine::memory
