#pragma once

#include "engine/engine.h"

#include <memory>
#include <string_view>

namespace engine {

/// Opens "sqlite:path", "postgresql://user@host/database" or "odbc:" with a connection string ("DSN=...", "DRIVER=...;...").
/// Throws Error(Unavailable) when the database is missing or is no database.
std::unique_ptr<Engine> openEngine(std::string_view url, const EngineOptions &options = {});

} // namespace engine
