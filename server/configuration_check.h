#pragma once

#include "server/settings/configuration.h"

#include <string>
#include <vector>

namespace server {

/// Looks whether certificate, key, users and the audit log's folder can be used. Throws std::runtime_error.
void checkFiles(const Configuration &configuration);
/// Looks whether strangers can read the token key. Throws std::runtime_error.
void checkSecrets(const Configuration &configuration);
/// What the databases lack that the screens need, and which cannot be used at all, a line each. Empty when all is well.
std::vector<std::string> databaseFaults(const Configuration &configuration);
/// Opens every database and reads its tables. Throws std::runtime_error, which names the
/// database as configured.
void checkDatabases(const Configuration &configuration);

} // namespace server
