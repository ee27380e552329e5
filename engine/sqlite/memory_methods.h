#pragma once

namespace engine::memory {

/// Whether all memory of SQLite is counted towards the statement that takes it. SQLite is told before main() begins.
bool isCounted();

} // namespace engine::memory
