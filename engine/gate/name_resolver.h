#pragma once

#include "engine/gate/scopes.h"

namespace engine::gate {

constexpr std::uint32_t largestWritten = 100'000; ///< tokens
constexpr std::size_t mostTables = 64; ///< of one from clause; SQLite joins no more

/// Finds what every name of a statement means. Throws Refusal for a name that is no column, and when the columns of subqueries, put in
/// place of their names, would make the statement too large for a database. `tokens`: of the whole statement and of what rules add.
void resolveNames(Scopes &scopes, std::size_t tokens);

} // namespace engine::gate
