#pragma once

#include "engine/engine.h"

#include <string>
#include <vector>

namespace engine {

/// What a database lacks that the statements of the screens need, in Chinese, with what is to be done: missing tables and columns, and an
/// order of texts that is not that of their codes. Empty when all is well. It asks for no rows, and works on every kind of database; one
/// that goes meanwhile throws Error(Unavailable).
std::vector<std::string> databaseFaults(Engine &engine);

} // namespace engine
