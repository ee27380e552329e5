#pragma once

#include "engine/dialect/connection.h"

#include <memory>
#include <string>

namespace engine {

/// Opens a session of a PostgreSQL server by its URL, as PostgresqlConnection does. Throws Error(Unavailable), always in a build
/// without libpq.
std::unique_ptr<Connection> openPostgresql(const std::string &url);

} // namespace engine
