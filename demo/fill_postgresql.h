#pragma once

#include "demo/generator.h"

namespace demo {

/// Makes the network in a PostgreSQL database; what was there stays until the new tables are whole. Throws std::runtime_error, always in
/// a build without libpq.
void fillPostgresql(const Settings &settings, const Progress &progress);

} // namespace demo
