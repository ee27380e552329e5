#pragma once

#include "demo/database.h"

#include <memory>
#include <string>

namespace demo {

/// A PostgresqlDatabase, which its header tells of. Throws std::runtime_error, always in a build without libpq.
std::unique_ptr<Database> openPostgresql(const std::string &url, bool replaces);

} // namespace demo
